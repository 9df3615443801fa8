#include "ambrelio/platform/thread_value.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace ambrelio {
namespace {

std::vector<std::string>* ends = nullptr;

struct First {
  ~First() { ends->push_back("first"); }
  int number = 0;
};
struct Second {
  Second() : first(ThreadValue<First>()) {}
  ~Second() { ends->push_back("second, first is " + std::to_string(ThreadValue<First>().number)); }
  First& first;
};

TEST(ThreadValue, IsOneOfItsTypeForEachThread) {
  struct Number {
    int value = 0;
  };
  ThreadValue<Number>().value = 1;
  std::thread([] { EXPECT_EQ(ThreadValue<Number>().value, 0); }).join();
  EXPECT_EQ(ThreadValue<Number>().value, 1);
}

TEST(ThreadValue, EndsWithItsThreadLaterOnesFirst) {
  std::vector<std::string> log;
  ends = &log;
  std::thread([] { ThreadValue<Second>().first.number = 7; }).join();
  EXPECT_THAT(log, ::testing::ElementsAre("second, first is 7", "first"));
}

}  // namespace
}  // namespace ambrelio
