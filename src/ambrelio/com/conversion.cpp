#include "ambrelio/com/conversion.h"

#include <vector>

#include "ambrelio/com/errors.h"
#include "ambrelio/value/automation_error.h"

namespace ambrelio::com {
namespace {

class ForeignObjectBridge final : public ObjectBridge {
 public:
  ComPtr<IDispatch> Outside(const Variant::ObjectPtr& object) const override {
    if (object == nullptr) return {};
    const auto foreign = std::dynamic_pointer_cast<ForeignObject>(object);
    if (foreign == nullptr) Raise(RuntimeError::kTypeMismatch);
    return foreign->get();
  }
  Variant::ObjectPtr Inside(IDispatch* object) const override {
    return std::make_shared<ForeignObject>(object);
  }
};

// Follows a VARIANT that refers to another one.
const VARIANT& Behind(const VARIANT& value) {
  const VARIANT* at = &value;
  while (V_VT(at) == (VT_BYREF | VT_VARIANT)) at = V_VARIANTREF(at);
  return *at;
}

// An array while its elements are looked at.
class ArrayAccess {
 public:
  explicit ArrayAccess(SAFEARRAY* array) : array_(array) {
    Check(::SafeArrayLock(array_), "SafeArrayLock");
  }
  ~ArrayAccess() { ::SafeArrayUnlock(array_); }
  ArrayAccess(const ArrayAccess&) = delete;
  ArrayAccess& operator=(const ArrayAccess&) = delete;

  UINT Dimensions() const { return ::SafeArrayGetDim(array_); }
  // Of a dimension counted from 1.
  LONG Lower(UINT dimension) const {
    LONG bound = 0;
    Check(::SafeArrayGetLBound(array_, dimension, &bound), "SafeArrayGetLBound");
    return bound;
  }
  LONG Upper(UINT dimension) const {
    LONG bound = 0;
    Check(::SafeArrayGetUBound(array_, dimension, &bound), "SafeArrayGetUBound");
    return bound;
  }
  void* Element(std::vector<LONG>& at) const {
    void* element = nullptr;
    Check(::SafeArrayPtrOfIndex(array_, at.data(), &element), "SafeArrayPtrOfIndex");
    return element;
  }

 private:
  SAFEARRAY* array_;
};

// The elements from dimension at.size() + 1 on, of the place that `at` tells in those before.
Variant::Array Elements(const ArrayAccess& array, VARTYPE type, std::vector<LONG>& at,
                        const ObjectBridge& objects) {
  Variant::Array elements;
  const auto dimension = static_cast<UINT>(at.size() + 1);
  const bool last = dimension == array.Dimensions();
  for (LONG i = array.Lower(dimension); i <= array.Upper(dimension); ++i) {
    at.push_back(i);
    if (last) {
      VARIANT element;
      V_VT(&element) = static_cast<VARTYPE>(type | VT_BYREF);
      V_BYREF(&element) = array.Element(at);
      elements.push_back(FromCom(element, objects));
    } else {
      elements.emplace_back(Elements(array, type, at, objects));
    }
    at.pop_back();
  }
  return elements;
}

Variant FromArray(const VARIANT& value, const ObjectBridge& objects) {
  SAFEARRAY* const array = (V_VT(&value) & VT_BYREF) != 0 ? *V_ARRAYREF(&value) : V_ARRAY(&value);
  if (array == nullptr) return Variant::Array();
  const auto type = static_cast<VARTYPE>(V_VT(&value) & VT_TYPEMASK);
  std::vector<LONG> at;
  return Elements(ArrayAccess(array), type, at, objects);
}

Variant FromObject(IUnknown* object, const ObjectBridge& objects) {
  if (object == nullptr) return Variant::Nothing();
  const ComPtr<IDispatch> dispatch = ComPtr<IUnknown>(object).As<IDispatch>();
  if (!dispatch) Raise(RuntimeError::kTypeMismatch);
  return objects.Inside(dispatch.get());
}

// Numbers of the types that the library does not have.
double WideNumber(const VARIANT& value) {
  OwnedVariant number;
  VARIANT source = value;
  Check(::VariantChangeType(&number.get(), &source, 0, VT_R8), "VariantChangeType");
  return V_R8(&number.get());
}

OwnedVariant ToArray(const Variant::Array& elements, const ObjectBridge& objects) {
  OwnedVariant result;
  SAFEARRAY* const array =
      ::SafeArrayCreateVector(VT_VARIANT, 0, static_cast<ULONG>(elements.size()));
  if (array == nullptr) throw std::bad_alloc();
  V_VT(&result.get()) = VT_ARRAY | VT_VARIANT;
  V_ARRAY(&result.get()) = array;
  const ArrayAccess access(array);
  auto* const places = static_cast<VARIANT*>(array->pvData);
  for (size_t i = 0; i < elements.size(); ++i) places[i] = ToCom(elements[i], objects).Release();
  return result;
}

}  // namespace

const ObjectBridge& ForeignObjects() {
  static const ForeignObjectBridge bridge;
  return bridge;
}

Variant FromCom(const VARIANT& given, const ObjectBridge& objects) {
  const VARIANT& value = Behind(given);
  if ((V_VT(&value) & VT_ARRAY) != 0) return FromArray(value, objects);
  if (IsOmitted(value)) return {};
  // A reference to anything else is read through a copy, which resolves it.
  OwnedVariant copy;
  const bool reference = (V_VT(&value) & VT_BYREF) != 0;
  if (reference) {
    VARIANT source = value;
    Check(::VariantCopyInd(&copy.get(), &source), "VariantCopyInd");
  }
  const VARIANT& plain = reference ? copy.get() : value;
  switch (V_VT(&plain)) {
    case VT_EMPTY:
      return {};
    case VT_NULL:
      return Variant::Null();
    case VT_BOOL:
      return V_BOOL(&plain) != VARIANT_FALSE;
    case VT_UI1:
      return V_UI1(&plain);
    case VT_I1:
      return static_cast<int16_t>(V_I1(&plain));
    case VT_I2:
      return V_I2(&plain);
    case VT_UI2:
      return static_cast<int32_t>(V_UI2(&plain));
    case VT_I4:
      return static_cast<int32_t>(V_I4(&plain));
    case VT_INT:
      return static_cast<int32_t>(V_INT(&plain));
    case VT_R4:
      return V_R4(&plain);
    case VT_R8:
      return V_R8(&plain);
    case VT_UI4:
    case VT_UINT:
    case VT_I8:
    case VT_UI8:
    case VT_DECIMAL:
      return WideNumber(plain);
    case VT_CY:
      return Currency{V_CY(&plain).int64};
    case VT_DATE:
      return OleDate::FromDays(V_DATE(&plain));
    case VT_BSTR:
      return TextOf(V_BSTR(&plain));
    case VT_DISPATCH:
    case VT_UNKNOWN:
      return FromObject(V_UNKNOWN(&plain), objects);
    default:
      Raise(RuntimeError::kTypeMismatch);
  }
}

OwnedVariant ToCom(const Variant& value, const ObjectBridge& objects) {
  if (value.is_array()) return ToArray(value.array(), objects);
  OwnedVariant result;
  VARIANT& to = result.get();
  switch (value.type()) {
    case VariantType::kEmpty:
    case VariantType::kArray:
      break;
    case VariantType::kNull:
      V_VT(&to) = VT_NULL;
      break;
    case VariantType::kBoolean:
      V_BOOL(&to) = value.as<bool>() ? VARIANT_TRUE : VARIANT_FALSE;
      V_VT(&to) = VT_BOOL;
      break;
    case VariantType::kByte:
      V_UI1(&to) = value.as<uint8_t>();
      V_VT(&to) = VT_UI1;
      break;
    case VariantType::kInteger:
      V_I2(&to) = value.as<int16_t>();
      V_VT(&to) = VT_I2;
      break;
    case VariantType::kLong:
      V_I4(&to) = value.as<int32_t>();
      V_VT(&to) = VT_I4;
      break;
    case VariantType::kSingle:
      V_R4(&to) = value.as<float>();
      V_VT(&to) = VT_R4;
      break;
    case VariantType::kDouble:
      V_R8(&to) = value.as<double>();
      V_VT(&to) = VT_R8;
      break;
    case VariantType::kCurrency:
      V_CY(&to).int64 = value.as<Currency>().ten_thousandths;
      V_VT(&to) = VT_CY;
      break;
    case VariantType::kDate:
      V_DATE(&to) = value.as<OleDate>().days();
      V_VT(&to) = VT_DATE;
      break;
    case VariantType::kText:
      V_BSTR(&to) = BStr(value.as<std::string>()).Release();
      V_VT(&to) = VT_BSTR;
      break;
    case VariantType::kObject:
      V_DISPATCH(&to) = objects.Outside(value.object()).Release();
      V_VT(&to) = VT_DISPATCH;
      break;
  }
  return result;
}

bool IsOmitted(const VARIANT& argument) {
  const VARIANT& value = Behind(argument);
  return V_VT(&value) == VT_ERROR && V_ERROR(&value) == DISP_E_PARAMNOTFOUND;
}

}  // namespace ambrelio::com
