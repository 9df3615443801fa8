// Running mdbtools, another reader of these files.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace ambrelio::jetfile {

inline bool HasMdbtools() {
  return std::system("command -v mdb-export mdb-schema >/dev/null") == 0;
}

inline std::string OutputOf(const std::string& command) {
  std::string output;
  FILE* pipe = popen(command.c_str(), "r");
  char buffer[4096];
  for (size_t got = 0; (got = fread(buffer, 1, sizeof buffer, pipe)) > 0;) {
    output.append(buffer, got);
  }
  EXPECT_EQ(pclose(pipe), 0) << command;
  return output;
}

}  // namespace ambrelio::jetfile
