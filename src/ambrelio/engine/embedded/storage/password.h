// The password of a database: a courtesy lock, as Jet's. It is kept masked, so that it does not
// show in a look at the file; it encrypts nothing and keeps nobody out who reads the file without
// this engine.
#pragma once

#include <string>
#include <string_view>

#include "ambrelio/engine/embedded/storage/catalogue_store.h"

namespace ambrelio::embedded {

// The password in a connect text: `;pwd=secret`, with or without `MS Access` before the first
// semicolon, the key in any case. "" when there is none; 3170 when the text names another kind of
// database.
std::string PasswordOf(std::string_view connect);

// Raises 3031 when the password has more than 20 characters.
void CheckNewPassword(const std::string& password);
void SetPassword(CatalogueStore& catalogue, const std::string& password);

// Raises 3031 unless the database has no password, or just this one, in this case.
void CheckPassword(CatalogueStore& catalogue, const std::string& password);

}  // namespace ambrelio::embedded
