#include "win32/type_library_text.h"

#include <sstream>

#include "ambrelio/com/owned.h"

namespace ambrelio::test {
namespace {

using com::BStr;
using com::ComPtr;

std::string GuidText(REFGUID id) {
  wchar_t text[40];
  ::StringFromGUID2(id, text, 40);
  return com::FromWide(text);
}

std::string FlagsText(WORD flags) {
  std::string text;
  const std::pair<int, const char*> names[] = {{TYPEFLAG_FAPPOBJECT, " appobject"},
                                               {TYPEFLAG_FCANCREATE, " creatable"},
                                               {TYPEFLAG_FHIDDEN, " hidden"},
                                               {TYPEFLAG_FDUAL, " dual"},
                                               {TYPEFLAG_FNONEXTENSIBLE, " nonextensible"},
                                               {TYPEFLAG_FOLEAUTOMATION, " oleautomation"},
                                               {TYPEFLAG_FDISPATCHABLE, " dispatchable"}};
  for (const auto& [flag, name] : names) {
    if ((flags & flag) != 0) text += name;
  }
  return text;
}

std::string ArgumentText(ITypeInfo* info, const ELEMDESC& element, const std::string& name) {
  const PARAMDESC& parameter = element.paramdesc;
  std::string flags;
  const auto add = [&](int flag, const char* text) {
    if ((parameter.wParamFlags & flag) != 0)
      flags += (flags.empty() ? "" : ", ") + std::string(text);
  };
  add(PARAMFLAG_FIN, "in");
  add(PARAMFLAG_FOUT, "out");
  add(PARAMFLAG_FRETVAL, "retval");
  add(PARAMFLAG_FOPT, "optional");
  if ((parameter.wParamFlags & PARAMFLAG_FHASDEFAULT) != 0) {
    BStr text;
    VARIANT converted;
    ::VariantInit(&converted);
    VARIANT value = parameter.pparamdescex->varDefaultValue;
    ::VariantChangeType(&converted, &value, 0, VT_BSTR);
    *text.Receive() = V_BSTR(&converted);
    flags += ", defaultvalue(" + text.Text() + ")";
  }
  return "[" + flags + "] " + TypeText(info, element.tdesc) + (name.empty() ? "" : " " + name);
}

void WriteFunctions(std::ostringstream& out, ITypeInfo* info) {
  const Attributes attributes(info);
  for (UINT i = 0; i < attributes->cFuncs; ++i) {
    const Function function(info, i);
    const char* const kind = function->invkind == INVOKE_PROPERTYGET   ? ", propget"
                             : function->invkind == INVOKE_PROPERTYPUT ? ", propput"
                                                                       : "";
    const std::vector<std::string> names = NamesOf(info, function->memid);
    out << "  [id(" << function->memid << ")" << kind << "] "
        << TypeText(info, function->elemdescFunc.tdesc) << " " << names[0] << "(";
    // A property has the names of its get, which has none for the value that its let sets.
    const bool let = function->invkind == INVOKE_PROPERTYPUT;
    for (SHORT argument = 0; argument < function->cParams; ++argument) {
      const bool named = !let || argument + 1 < function->cParams;
      const auto at = static_cast<size_t>(argument) + 1;
      out << (argument == 0 ? "" : ", ")
          << ArgumentText(info, function->lprgelemdescParam[argument],
                          named && at < names.size() ? names[at] : "");
    }
    out << ") vtable " << static_cast<size_t>(function->oVft) / sizeof(void*) << "\n    "
        << DocumentationOf(info, function->memid).help << "\n";
  }
}

void WriteValues(std::ostringstream& out, ITypeInfo* info) {
  const Attributes attributes(info);
  for (UINT i = 0; i < attributes->cVars; ++i) {
    VARDESC* value = nullptr;
    info->GetVarDesc(i, &value);
    out << "  " << DocumentationOf(info, value->memid).name << " = " << V_I4(value->lpvarValue)
        << "\n";
    info->ReleaseVarDesc(value);
  }
}

// The vtable's view of a dual interface; of anything else, itself.
ComPtr<ITypeInfo> VtableView(const ComPtr<ITypeInfo>& info) {
  HREFTYPE reference = 0;
  ComPtr<ITypeInfo> view;
  if (Attributes(info.get())->typekind == TKIND_DISPATCH &&
      SUCCEEDED(info->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference)) &&
      SUCCEEDED(info->GetRefTypeInfo(reference, view.Receive()))) {
    return view;
  }
  return info;
}

}  // namespace

std::string TypeText(ITypeInfo* info, const TYPEDESC& type) {
  switch (type.vt) {
    case VT_PTR:
      return TypeText(info, *type.lptdesc) + "*";
    case VT_USERDEFINED: {
      ComPtr<ITypeInfo> named;
      info->GetRefTypeInfo(type.hreftype, named.Receive());
      return DocumentationOf(named.get(), MEMBERID_NIL).name;
    }
    case VT_BOOL:
      return "VARIANT_BOOL";
    case VT_I2:
      return "short";
    case VT_I4:
      return "long";
    case VT_R8:
      return "double";
    case VT_DATE:
      return "DATE";
    case VT_BSTR:
      return "BSTR";
    case VT_VARIANT:
      return "VARIANT";
    case VT_HRESULT:
      return "HRESULT";
    default:
      return "type " + std::to_string(type.vt);
  }
}

Documentation DocumentationOf(ITypeInfo* info, MEMBERID member) {
  BStr name;
  BStr help;
  info->GetDocumentation(member, name.Receive(), help.Receive(), nullptr, nullptr);
  return {name.Text(), help.Text()};
}

std::vector<std::string> NamesOf(ITypeInfo* info, MEMBERID member) {
  BSTR names[16] = {};
  UINT count = 0;
  info->GetNames(member, names, 16, &count);
  std::vector<std::string> texts;
  for (UINT i = 0; i < count; ++i) {
    texts.push_back(com::TextOf(names[i]));
    ::SysFreeString(names[i]);
  }
  return texts;
}

std::string TypeLibraryText(ITypeLib* library) {
  std::ostringstream out;
  TLIBATTR* attributes = nullptr;
  library->GetLibAttr(&attributes);
  BStr name;
  BStr help;
  library->GetDocumentation(-1, name.Receive(), help.Receive(), nullptr, nullptr);
  out << "library " << name.Text() << " " << GuidText(attributes->guid) << " "
      << attributes->wMajorVerNum << "." << attributes->wMinorVerNum << " lcid " << attributes->lcid
      << "\n  " << help.Text() << "\n";
  library->ReleaseTLibAttr(attributes);
  for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
    ComPtr<ITypeInfo> info;
    library->GetTypeInfo(i, info.Receive());
    const Documentation documentation = DocumentationOf(info.get(), MEMBERID_NIL);
    const Attributes type(info.get());
    const char* const kind = type->typekind == TKIND_COCLASS ? "coclass"
                             : type->typekind == TKIND_ENUM  ? "enum"
                                                             : "interface";
    out << "\n"
        << kind << " " << documentation.name << " " << GuidText(type->guid)
        << FlagsText(Attributes(VtableView(info).get())->wTypeFlags) << "\n";
    if (!documentation.help.empty()) out << "  " << documentation.help << "\n";
    if (type->typekind == TKIND_COCLASS) {
      HREFTYPE reference = 0;
      ComPtr<ITypeInfo> main;
      info->GetRefTypeOfImplType(0, &reference);
      info->GetRefTypeInfo(reference, main.Receive());
      out << "  default " << DocumentationOf(main.get(), MEMBERID_NIL).name << "\n";
    } else if (type->typekind == TKIND_ENUM) {
      WriteValues(out, info.get());
    } else {
      WriteFunctions(out, VtableView(info).get());
    }
  }
  return out.str();
}

}  // namespace ambrelio::test
