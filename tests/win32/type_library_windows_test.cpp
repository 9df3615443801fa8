// The type library inside the DLL, held against the object model and against what was published.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "ambrelio/automation/model.h"
#include "win32/server_dll.h"
#include "win32/type_library_text.h"

namespace ambrelio {
namespace {

using automation::Argument;
using automation::Class;
using automation::Member;
using automation::MemberKind;
using automation::ValueType;
using com::ComPtr;
using test::Attributes;
using test::DocumentationOf;
using test::Function;

class TypeLibrary : public ::testing::Test {
 protected:
  void SetUp() override {
    com::Check(::LoadTypeLibEx(test::ServerDll::Path().c_str(), REGKIND_NONE, library.Receive()),
               "LoadTypeLibEx");
  }

  ComPtr<ITypeInfo> Find(const std::string& name) const {
    for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
      ComPtr<ITypeInfo> info;
      library->GetTypeInfo(i, info.Receive());
      if (DocumentationOf(info.get(), MEMBERID_NIL).name == name) return info;
    }
    ADD_FAILURE() << name << " is not in the library";
    return {};
  }

  ComPtr<ITypeInfo> FindVtable(const std::string& name) const {
    const ComPtr<ITypeInfo> dispatch = Find(name);
    HREFTYPE reference = 0;
    ComPtr<ITypeInfo> vtable;
    dispatch->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference);
    dispatch->GetRefTypeInfo(reference, vtable.Receive());
    return vtable;
  }

  test::Apartment apartment;
  ComPtr<ITypeLib> library;
};

std::string TypeName(ValueType type, const char* object_class, const char* enumeration = nullptr) {
  if (enumeration != nullptr) return enumeration;
  switch (type) {
    case ValueType::kBoolean:
      return "VARIANT_BOOL";
    case ValueType::kInteger:
      return "short";
    case ValueType::kLong:
      return "long";
    case ValueType::kDouble:
      return "double";
    case ValueType::kDate:
      return "DATE";
    case ValueType::kText:
      return "BSTR";
    case ValueType::kVariant:
      return "VARIANT";
    case ValueType::kObject:
      return std::string("_") + object_class + "*";
    case ValueType::kNone:
      return "";
  }
  return "";
}

INVOKEKIND KindOf(MemberKind kind) {
  switch (kind) {
    case MemberKind::kMethod:
      return INVOKE_FUNC;
    case MemberKind::kGet:
      return INVOKE_PROPERTYGET;
    case MemberKind::kLet:
      return INVOKE_PROPERTYPUT;
  }
  return INVOKE_FUNC;
}

void ExpectArgument(ITypeInfo* info, const ELEMDESC& element, const Argument& argument) {
  SCOPED_TRACE(argument.name);
  EXPECT_EQ(test::TypeText(info, element.tdesc),
            TypeName(argument.type, argument.object_class) + "*");
  const int flags = element.paramdesc.wParamFlags;
  EXPECT_EQ(flags & (PARAMFLAG_FIN | PARAMFLAG_FOUT), PARAMFLAG_FIN | PARAMFLAG_FOUT);
  EXPECT_EQ((flags & PARAMFLAG_FOPT) != 0, argument.optional);
  EXPECT_EQ((flags & PARAMFLAG_FHASDEFAULT) != 0,
            argument.optional && argument.type != ValueType::kVariant);
}

void ExpectFunction(ITypeInfo* info, UINT index, const Member& member) {
  SCOPED_TRACE(member.name);
  const Function function(info, index);
  EXPECT_EQ(function->memid, member.dispid);
  EXPECT_EQ(function->invkind, KindOf(member.kind));
  EXPECT_EQ(function->elemdescFunc.tdesc.vt, VT_HRESULT);
  // The vtable holds the seven methods of IDispatch, then the members in their order.
  EXPECT_EQ(function->oVft / static_cast<SHORT>(sizeof(void*)), static_cast<SHORT>(7 + index));

  const bool has_result = member.result != ValueType::kNone;
  ASSERT_EQ(static_cast<size_t>(function->cParams), member.arguments.size() + (has_result ? 1 : 0));
  for (size_t i = 0; i < member.arguments.size(); ++i) {
    ExpectArgument(info, function->lprgelemdescParam[i], member.arguments[i]);
  }
  if (has_result) {
    const ELEMDESC& result = function->lprgelemdescParam[member.arguments.size()];
    EXPECT_EQ(test::TypeText(info, result.tdesc),
              TypeName(member.result, member.result_class, member.result_enumeration) + "*");
    EXPECT_EQ(result.paramdesc.wParamFlags, PARAMFLAG_FOUT | PARAMFLAG_FRETVAL);
  }
}

// The names of a property's arguments are told by its get; the value that a let sets has none.
void ExpectNames(ITypeInfo* info, const Member& member) {
  SCOPED_TRACE(member.name);
  const std::vector<std::string> names = test::NamesOf(info, member.dispid);
  ASSERT_FALSE(names.empty());
  EXPECT_EQ(names[0], member.name);
  if (member.kind == MemberKind::kLet) return;
  ASSERT_GE(names.size(), member.arguments.size() + 1);
  for (size_t i = 0; i < member.arguments.size(); ++i) {
    EXPECT_TRUE(automation::SameName(names[i + 1], member.arguments[i].name)) << names[i + 1];
  }
}

TEST_F(TypeLibrary, HoldsTheClassesOfTheModel) {
  for (const Class& expected : automation::Model()) {
    SCOPED_TRACE(expected.name);
    const ComPtr<ITypeInfo> info = Find(expected.name);
    ASSERT_TRUE(info);
    const Attributes attributes(info.get());
    EXPECT_EQ(attributes->typekind, TKIND_COCLASS);
    EXPECT_EQ((attributes->wTypeFlags & TYPEFLAG_FCANCREATE) != 0, expected.creatable);
    EXPECT_EQ((attributes->wTypeFlags & TYPEFLAG_FAPPOBJECT) != 0, expected.application_object);
    EXPECT_EQ(DocumentationOf(info.get(), MEMBERID_NIL).help, expected.help);
    ASSERT_EQ(attributes->cImplTypes, 1);
    HREFTYPE reference = 0;
    ComPtr<ITypeInfo> main;
    info->GetRefTypeOfImplType(0, &reference);
    info->GetRefTypeInfo(reference, main.Receive());
    EXPECT_EQ(DocumentationOf(main.get(), MEMBERID_NIL).name, std::string("_") + expected.name);
  }
}

TEST_F(TypeLibrary, HoldsTheMembersOfTheModelInTheirOrder) {
  for (const Class& expected : automation::Model()) {
    SCOPED_TRACE(expected.name);
    const ComPtr<ITypeInfo> info = FindVtable(std::string("_") + expected.name);
    const Attributes attributes(info.get());
    ASSERT_EQ(attributes->cFuncs, expected.members.size());
    for (UINT i = 0; i < attributes->cFuncs; ++i) {
      ExpectFunction(info.get(), i, expected.members[i]);
      ExpectNames(info.get(), expected.members[i]);
    }
  }
}

// Automation gives one sentence for a number; where a let has its own, the get's is told.
TEST_F(TypeLibrary, HoldsTheSentencesOfTheModel) {
  for (const Class& expected : automation::Model()) {
    SCOPED_TRACE(expected.name);
    const ComPtr<ITypeInfo> info = FindVtable(std::string("_") + expected.name);
    for (const Member& member : expected.members) {
      if (member.kind == MemberKind::kLet) continue;
      EXPECT_EQ(DocumentationOf(info.get(), member.dispid).help, member.help);
    }
  }
}

TEST_F(TypeLibrary, HoldsTheInterfacesAsDualAndHidden) {
  for (const Class& expected : automation::Model()) {
    const std::string name = std::string("_") + expected.name;
    EXPECT_EQ(Attributes(Find(name).get())->wTypeFlags & TYPEFLAG_FDUAL, TYPEFLAG_FDUAL) << name;
    const Attributes attributes(FindVtable(name).get());
    const int flags =
        TYPEFLAG_FDUAL | TYPEFLAG_FHIDDEN | TYPEFLAG_FNONEXTENSIBLE | TYPEFLAG_FOLEAUTOMATION;
    EXPECT_EQ(attributes->wTypeFlags & flags, flags) << name;
  }
}

TEST_F(TypeLibrary, HoldsTheEnumerationsOfTheModel) {
  for (const automation::Enumeration& expected : automation::Enumerations()) {
    SCOPED_TRACE(expected.name);
    const ComPtr<ITypeInfo> info = Find(expected.name);
    EXPECT_EQ(DocumentationOf(info.get(), MEMBERID_NIL).help, expected.help);
    const Attributes attributes(info.get());
    EXPECT_EQ(attributes->typekind, TKIND_ENUM);
    ASSERT_EQ(attributes->cVars, expected.values.size());
    for (UINT i = 0; i < attributes->cVars; ++i) {
      VARDESC* value = nullptr;
      ASSERT_EQ(info->GetVarDesc(i, &value), S_OK);
      EXPECT_EQ(DocumentationOf(info.get(), value->memid).name, expected.values[i].name);
      EXPECT_EQ(V_I4(value->lpvarValue), expected.values[i].number);
      info->ReleaseVarDesc(value);
    }
  }
}

// What clients were compiled against. A difference is a change of the published interface; the text
// as it would be now is left beside the DLL.
TEST_F(TypeLibrary, IsAsItWasPublished) {
  std::ifstream file(AMBRELIO_SOURCE_DIR "/src/ambrelio/win32/ambrelio.typelib.txt");
  std::ostringstream published;
  published << file.rdbuf();
  const std::string now = test::TypeLibraryText(library.get());
  const std::string beside = std::string(AMBRELIO_SERVER) + ".typelib.txt";
  std::ofstream(beside, std::ios::binary) << now;
  EXPECT_TRUE(now == published.str()) << "compare ambrelio.typelib.txt with " << beside;
}

}  // namespace
}  // namespace ambrelio
