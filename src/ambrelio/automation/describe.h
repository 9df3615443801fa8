// The object model as a document.
#pragma once

#include <string>

#include "ambrelio/automation/model.h"

namespace ambrelio::automation {

// As in Visual Basic: "Descargar(dto As Integer, mol As Integer, [qto As Double]) As Boolean",
// "Info(ix As Integer) = String".
std::string DescribeMember(const Member& member);

// Every class with its members, and every enumeration, in Markdown: a heading and a table for each.
std::string DescribeModel();

}  // namespace ambrelio::automation
