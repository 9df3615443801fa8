// Settings files: any bytes can be read, and a setting that is written reads back, with every other
// setting as it was.
#include "ambrelio/kestro/ini_text.h"

#include <string>

#include "fuzz.h"

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using ambrelio::fuzz::Require;
  using ambrelio::kestro::IniText;
  IniText text{std::string(ambrelio::fuzz::TextOf(data, size))};
  const std::string counts = text.Find("GENERAL", "MaxTolvas");
  const std::string unnamed = text.Find("", "MaxTolvas");
  text.Set("SENSORES", "Periodo", " 5000 ");
  Require(text.Find("SENSORES", "Periodo") == " 5000 ", "a written value reads back");
  text.Set("SENSORES", "Periodo", "60000");
  Require(text.Find("GENERAL", "MaxTolvas") == counts, "another section is as it was");
  Require(text.Find("", "MaxTolvas") == unnamed, "so is what stands before the first section");
  const IniText again(text.bytes());
  Require(again.Find("sensores", "PERIODO") == "60000", "it reads back from the file's bytes");
  return 0;
}
