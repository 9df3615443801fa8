// The opening of the database, and the steps that bring an older one up to the schema.
#pragma once

#include <string>

#include "ambrelio/data/session.h"

namespace ambrelio::frame {

// Closes what is open, then opens `path`. A failure raises nothing: the session is then closed.
void OpenDatabaseSession(Session& session, const std::string& path, const std::string& password);

// The seven schema steps, in their order. They trap nothing.
void EnsureSchema(Session& session);

}  // namespace ambrelio::frame
