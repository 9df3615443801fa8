// The sample files, and copies of them to damage.
#pragma once

#include <fstream>
#include <iterator>
#include <ostream>
#include <string>
#include <vector>

#include "ambrelio/engine/jetfile/jet_file.h"
#include "ambrelio/platform/file_path.h"

namespace ambrelio::jetfile {

struct Sample {
  const char* name;
  const char* password = "";
  // Whether it is of the newer format.
  bool jet4 = true;
};

inline std::ostream& operator<<(std::ostream& out, const Sample& sample) {
  return out << sample.name;
}

inline const std::vector<Sample>& Samples() {
  static const std::vector<Sample> samples = {
      {"accessLike"},
      {"adox_jet4"},
      {"compIndexTestV2000"},
      {"db-enc"},
      {"db97-enc", "", false},
      {"delColTestV2000"},
      {"delTestV2000"},
      {"emptyJet4"},
      {"fixedNumericTestV2000"},
      {"fixedTextTestV2000"},
      {"indexTestV2000"},
      {"overflowTestV2000"},
      {"password", "ucanaccess"},
      {"pivot"},
      {"queryTestV1997", "", false},
      {"queryTestV2000"},
      {"queryTestV2003"},
      {"test2V1997", "", false},
      {"test2V2000"},
      {"testIndexCodesV1997", "", false},
      {"testIndexPropertiesV2000"},
      {"testUnicodeCompV2003"},
      {"testV1997", "", false},
      {"weirdObjectNames"},
  };
  return samples;
}

inline std::string SampleFolder() { return AMBRELIO_SOURCE_DIR "/tests/engine/jetfile/samples/"; }
inline std::string SamplePath(const std::string& name) { return SampleFolder() + name + ".mdb"; }

inline Bytes BytesOnDisk(const std::string& path) {
  std::ifstream file(FilePath(path), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}
inline Bytes SampleBytes(const std::string& name) { return BytesOnDisk(SamplePath(name)); }

// What a file holds at the moment.
inline JetFile ReadFromDisk(const std::string& path, std::string_view password = "") {
  return JetFile::FromBytes(BytesOnDisk(path), password);
}
inline JetFile OpenSample(const Sample& sample) {
  return ReadFromDisk(SamplePath(sample.name), sample.password);
}

// A name that a test may have.
inline std::string TestName(const Sample& sample) {
  std::string name = sample.name;
  for (char& c : name) {
    if (c == '-') c = '_';
  }
  return name;
}

}  // namespace ambrelio::jetfile
