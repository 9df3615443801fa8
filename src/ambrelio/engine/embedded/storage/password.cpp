#include "ambrelio/engine/embedded/storage/password.h"

#include "ambrelio/dao/errors.h"
#include "ambrelio/platform/text_encoding.h"

namespace ambrelio::embedded {
namespace {

using dao::DaoError;

constexpr const char* kSetting = "password";
constexpr size_t kMostCharacters = 20;

// Masks as hexadecimal digits; an empty text stays empty.
std::string Masked(std::string_view password) {
  constexpr std::string_view kMask = "aceituna picual y cornicabra";
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string masked;
  for (size_t i = 0; i < password.size(); ++i) {
    const auto byte = static_cast<unsigned char>(password[i] ^ kMask[i % kMask.size()]);
    masked += kDigits[byte >> 4];
    masked += kDigits[byte & 15];
  }
  return masked;
}

// Letters of ASCII in lower case, without outer blanks.
std::string Key(std::string_view text) {
  const size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  text = text.substr(first, text.find_last_not_of(' ') - first + 1);
  std::string key(text);
  for (char& c : key) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return key;
}

}  // namespace

std::string PasswordOf(std::string_view connect) {
  const std::string type = Key(connect.substr(0, connect.find(';')));
  if (!type.empty() && type != "ms access") {
    dao::Raise(dao::DaoError::kUnknownDatabaseType, dao::source::kWorkspace, type);
  }
  std::string password;
  for (size_t start = connect.find(';'); start != std::string_view::npos;) {
    const size_t end = connect.find(';', start + 1);
    const std::string_view entry = connect.substr(
        start + 1, end == std::string_view::npos ? std::string_view::npos : end - start - 1);
    const size_t equals = entry.find('=');
    if (equals != std::string_view::npos && Key(entry.substr(0, equals)) == "pwd") {
      password = entry.substr(equals + 1);
    }
    start = end;
  }
  return password;
}

void CheckNewPassword(const std::string& password) {
  if (Utf8Length(password) > kMostCharacters) {
    dao::Raise(DaoError::kWrongPassword, dao::source::kWorkspace);
  }
}

void SetPassword(CatalogueStore& catalogue, const std::string& password) {
  catalogue.SetSetting(kSetting, Masked(password));
}

void CheckPassword(CatalogueStore& catalogue, const std::string& password) {
  const std::string masked = catalogue.Setting(kSetting);
  if (!masked.empty() && masked != Masked(password)) {
    dao::Raise(DaoError::kWrongPassword, dao::source::kWorkspace);
  }
}

}  // namespace ambrelio::embedded
