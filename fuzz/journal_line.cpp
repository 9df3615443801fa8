// A line of a journal: understood whole, or refused with a sentence.
#include "journal_line.h"

#include "failure.h"
#include "fuzz.h"

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using ambrelio::cli::ExitCode;
  using ambrelio::fuzz::Require;
  try {
    ambrelio::cli::ParseJournalLine(ambrelio::fuzz::TextOf(data, size));
  } catch (const ambrelio::cli::Failure& failure) {
    Require(failure.code() == ExitCode::kWrongInput, "a malformed line is wrong input");
    Require(failure.what()[0] != '\0', "a refusal says why");
  }
  return 0;
}
