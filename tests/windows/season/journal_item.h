// A journal for scripts: what it says has to be done, and where the answers go. The values are
// those of the lines to the last bit, which the numbers of a script's own text are not in every
// engine.
//
//   Open "folder\journal.jsonl"     begins to read
//   NextLine                        whether there is another line; the library's clock shows its
//   moment Kind                            "pesada", "call" or "let" Owner, Number the object that
//   is called: "Tolva" and 3, "Trazabilidad", "r" Member                          "Descargar"
//   Arguments                       an array; Empty stands for what was left out
//   Value                           what a property is set to
//   Column "TOLVA"                  of a weighing
//   Insertion(discharge)            the statement that stores the weighing in a discharge
//   Store "oliva.mdb", discharge    stores it in a file of the library's own engine
//   Answer result [, arguments]     writes the line that the command line would, as AnswerObject
//   AnswerObject "Referente"        and AnswerError number, text do
#pragma once

#include "script_object.h"

namespace ambrelio::script_host {

com::ComPtr<ScriptObject> MakeJournal();

}  // namespace ambrelio::script_host
