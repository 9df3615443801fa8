#include "ambrelio/com/errors.h"

#include <cstdio>

#include "ambrelio/com/owned.h"

namespace ambrelio::com {
namespace {

constexpr auto kVisualBasic = static_cast<HRESULT>(0x800A0000);
constexpr HRESULT kNumberMask = 0xFFFF;
constexpr const char* kSource = "Ambrelio";

}  // namespace

HRESULT ResultOf(const AutomationError& error) {
  const HRESULT number = error.number();
  return (number & ~kNumberMask) == 0 ? kVisualBasic | number : number;
}

int NumberOf(HRESULT result) {
  if ((result & ~kNumberMask) == kVisualBasic) return result & kNumberMask;
  switch (result) {
    case DISP_E_OVERFLOW:
      return static_cast<int>(RuntimeError::kOverflow);
    case E_OUTOFMEMORY:
      return 7;
    case DISP_E_BADINDEX:
      return static_cast<int>(RuntimeError::kSubscriptOutOfRange);
    case DISP_E_DIVBYZERO:
      return static_cast<int>(RuntimeError::kDivisionByZero);
    case DISP_E_TYPEMISMATCH:
      return static_cast<int>(RuntimeError::kTypeMismatch);
    case REGDB_E_CLASSNOTREG:
    case CO_E_CLASSSTRING:
    case CLASS_E_NOTLICENSED:
    case CO_E_DLLNOTFOUND:
    case CO_E_SERVER_EXEC_FAILURE:
      return static_cast<int>(RuntimeError::kCannotCreateObject);
    case DISP_E_UNKNOWNNAME:
    case DISP_E_MEMBERNOTFOUND:
      return static_cast<int>(RuntimeError::kMemberNotFound);
    case DISP_E_NONAMEDARGS:
      return 446;
    case DISP_E_UNKNOWNLCID:
      return 447;
    case DISP_E_PARAMNOTFOUND:
      return 448;
    case DISP_E_PARAMNOTOPTIONAL:
      return static_cast<int>(RuntimeError::kArgumentNotOptional);
    case DISP_E_BADPARAMCOUNT:
      return static_cast<int>(RuntimeError::kWrongArgumentCount);
    default:
      return result;
  }
}

std::string SentenceOf(HRESULT result) {
  wchar_t* text = nullptr;
  const DWORD length = ::FormatMessageW(
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
      nullptr, static_cast<DWORD>(result), 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
  std::string sentence = text == nullptr ? std::string() : FromWide({text, length});
  ::LocalFree(text);
  while (!sentence.empty() && static_cast<unsigned char>(sentence.back()) <= ' ') {
    sentence.pop_back();
  }
  if (!sentence.empty()) return sentence;
  char number[32];
  std::snprintf(number, sizeof number, "Error 0x%08lX", static_cast<unsigned long>(result));
  return number;
}

void Check(HRESULT result, const std::string& action) {
  if (FAILED(result)) {
    throw AutomationError(NumberOf(result), kSource, action + ": " + SentenceOf(result));
  }
}

AutomationError ErrorOf(HRESULT result, EXCEPINFO& info, const std::string& action) {
  if (result != DISP_E_EXCEPTION) {
    return {NumberOf(result), kSource, action + ": " + SentenceOf(result)};
  }
  if (info.pfnDeferredFillIn != nullptr) info.pfnDeferredFillIn(&info);
  const HRESULT code =
      info.scode != 0 ? info.scode : kVisualBasic | static_cast<HRESULT>(info.wCode);
  std::string source = TextOf(info.bstrSource);
  std::string description = TextOf(info.bstrDescription);
  for (BSTR text : {info.bstrSource, info.bstrDescription, info.bstrHelpFile}) {
    ::SysFreeString(text);
  }
  info = {};
  if (source.empty()) source = kSource;
  if (description.empty()) description = action + ": " + SentenceOf(code);
  return {NumberOf(code), std::move(source), std::move(description)};
}

}  // namespace ambrelio::com
