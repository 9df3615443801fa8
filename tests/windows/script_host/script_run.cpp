#include "script_run.h"

#include <activscp.h>

#include <cstdio>
#include <utility>

#include "ambrelio/com/errors.h"
#include "ambrelio/com/text.h"

namespace ambrelio::script_host {
namespace {

// The line of that number, counted from 0, without the blanks around it.
std::string LineOf(std::wstring_view text, ULONG number) {
  for (; number > 0; --number) {
    const size_t end = text.find(L'\n');
    if (end == std::wstring_view::npos) return {};
    text.remove_prefix(end + 1);
  }
  text = text.substr(0, text.find(L'\n'));
  const size_t first = text.find_first_not_of(L" \t\r");
  if (first == std::wstring_view::npos) return {};
  return com::FromWide(text.substr(first, text.find_last_not_of(L" \t\r") - first + 1));
}

// What the engine asks of its host. Lives on the stack of Run, so it is not counted.
class Site final : public IActiveScriptSite {
 public:
  Site(const ScriptFile& script, std::vector<NamedItem> items)
      : script_(script), items_(std::move(items)) {}
  virtual ~Site() = default;
  bool failed() const { return failed_; }

  STDMETHODIMP QueryInterface(REFIID interface_id, void** object) override {
    const bool known = interface_id == IID_IUnknown || interface_id == __uuidof(IActiveScriptSite);
    *object = known ? this : nullptr;
    return known ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP GetLCID(LCID* locale) override {
    *locale = ::GetUserDefaultLCID();
    return S_OK;
  }
  STDMETHODIMP GetItemInfo(LPCOLESTR name, DWORD wanted, IUnknown** object,
                           ITypeInfo** info) override {
    if (info != nullptr) *info = nullptr;
    for (const NamedItem& item : items_) {
      if (::lstrcmpiW(item.name.c_str(), name) != 0) continue;
      if ((wanted & SCRIPTINFO_IUNKNOWN) != 0) {
        *object = com::ComPtr<IDispatch>(item.object).Release();
      }
      return S_OK;
    }
    return TYPE_E_ELEMENTNOTFOUND;
  }
  STDMETHODIMP GetDocVersionString(BSTR*) override { return E_NOTIMPL; }
  STDMETHODIMP OnScriptTerminate(const VARIANT*, const EXCEPINFO*) override { return S_OK; }
  STDMETHODIMP OnStateChange(SCRIPTSTATE) override { return S_OK; }
  STDMETHODIMP OnEnterScript() override { return S_OK; }
  STDMETHODIMP OnLeaveScript() override { return S_OK; }
  STDMETHODIMP OnScriptError(IActiveScriptError* error) override;

 private:
  const ScriptFile& script_;
  std::vector<NamedItem> items_;
  bool failed_ = false;
};

STDMETHODIMP Site::OnScriptError(IActiveScriptError* error) {
  failed_ = true;
  EXCEPINFO info{};
  error->GetExceptionInfo(&info);
  if (info.pfnDeferredFillIn != nullptr) info.pfnDeferredFillIn(&info);
  DWORD context = 0;
  ULONG line = 0;
  LONG column = 0;
  error->GetSourcePosition(&context, &line, &column);
  const com::BStr source = com::BStr::Adopt(info.bstrSource);
  const com::BStr description = com::BStr::Adopt(info.bstrDescription);
  ::SysFreeString(info.bstrHelpFile);
  std::fflush(stdout);
  std::fprintf(stderr, "%s(%lu): error %d (0x%08lX)%s%s: %s\n", com::FromWide(script_.path).c_str(),
               line + 1, com::NumberOf(info.scode), static_cast<unsigned long>(info.scode),
               source.Text().empty() ? "" : " of ", source.Text().c_str(),
               description.Text().c_str());
  const std::string text = LineOf(script_.text, line);
  if (!text.empty()) std::fprintf(stderr, "    %s\n", text.c_str());
  return S_OK;
}

class Engine {
 public:
  Engine(const wchar_t* prog_id, Site& site) {
    CLSID id{};
    const bool made = SUCCEEDED(::CLSIDFromProgID(prog_id, &id)) &&
                      SUCCEEDED(::CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER,
                                                   __uuidof(IActiveScript), script_.ReceiveVoid()));
    parser_ = script_.As<IActiveScriptParse>();
    if (!made || !parser_) throw CannotRun(com::FromWide(prog_id) + ": there is no such engine");
    com::Check(script_->SetScriptSite(&site), "SetScriptSite");
    com::Check(parser_->InitNew(), "InitNew");
  }
  ~Engine() { script_->Close(); }
  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;

  void Name(const NamedItem& item) {
    com::Check(script_->AddNamedItem(item.name.c_str(), SCRIPTITEM_ISVISIBLE), "AddNamedItem");
  }
  bool Carry(const std::wstring& text) {
    EXCEPINFO info{};
    return SUCCEEDED(parser_->ParseScriptText(text.c_str(), nullptr, nullptr, nullptr, 0, 0,
                                              SCRIPTTEXT_ISVISIBLE, nullptr, &info)) &&
           SUCCEEDED(script_->SetScriptState(SCRIPTSTATE_STARTED));
  }

 private:
  com::ComPtr<IActiveScript> script_;
  com::ComPtr<IActiveScriptParse> parser_;
};

}  // namespace

ExitCode Run(const ScriptFile& script, std::vector<NamedItem> items) {
  Site site(script, items);
  Engine engine(script.engine, site);
  for (const NamedItem& item : items) engine.Name(item);
  const bool carried = engine.Carry(script.text);
  if (!carried && !site.failed()) {
    std::fprintf(stderr, "%s: the engine cannot read it\n", com::FromWide(script.path).c_str());
  }
  return carried && !site.failed() ? ExitCode::kDone : ExitCode::kScriptFailed;
}

}  // namespace ambrelio::script_host
