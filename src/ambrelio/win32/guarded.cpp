#include "ambrelio/win32/guarded.h"

#include <exception>
#include <new>
#include <string_view>

#include "ambrelio/com/errors.h"
#include "ambrelio/com/owned.h"
#include "ambrelio/value/automation_error.h"

namespace ambrelio::win32 {
namespace {

using com::ComPtr;

constexpr auto kInternalError = static_cast<HRESULT>(0x800A0033);
constexpr std::string_view kSource = "Ambrelio";

void SetErrorInfo(REFIID interface_id, std::string_view source, std::string_view description) {
  ComPtr<ICreateErrorInfo> made;
  if (FAILED(::CreateErrorInfo(made.Receive()))) return;
  made->SetGUID(interface_id);
  made->SetSource(com::ToWide(source).data());
  made->SetDescription(com::ToWide(description).data());
  if (const auto info = made.As<IErrorInfo>()) ::SetErrorInfo(0, info.get());
}

HRESULT Classify(REFIID interface_id) {
  try {
    throw;
  } catch (const AutomationError& error) {
    SetErrorInfo(interface_id, error.source(), error.description());
    const HRESULT result = com::ResultOf(error);
    return FAILED(result) ? result : kInternalError;
  } catch (const std::bad_alloc&) {
    SetErrorInfo(interface_id, kSource, "Out of memory");
    return E_OUTOFMEMORY;
  } catch (const std::exception& error) {
    SetErrorInfo(interface_id, kSource, std::string("Internal error: ") + error.what());
    return kInternalError;
  } catch (...) {
    SetErrorInfo(interface_id, kSource, "Internal error");
    return kInternalError;
  }
}

}  // namespace

HRESULT ReportException(REFIID interface_id) noexcept {
  try {
    return Classify(interface_id);
  } catch (...) {
    return E_OUTOFMEMORY;  // nothing else fails while an error is told
  }
}

void TakeErrorInfo(HRESULT result, EXCEPINFO& info) noexcept {
  info = {};
  info.scode = result;
  ComPtr<IErrorInfo> told;
  if (::GetErrorInfo(0, told.Receive()) != S_OK) return;
  told->GetSource(&info.bstrSource);
  told->GetDescription(&info.bstrDescription);
}

}  // namespace ambrelio::win32
