// script_host with one more item, Journal.
#include "host.h"
#include "journal_item.h"

int wmain(int count, wchar_t** arguments) {
  using namespace ambrelio;
  return script_host::Main(count, arguments, [] {
    const auto journal = script_host::MakeJournal();
    return std::vector<script_host::NamedItem>{{L"Journal", com::ComPtr<IDispatch>(journal.get())}};
  });
}
