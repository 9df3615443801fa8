// The library at work on a database, and what it is asked there.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "ambrelio/data/session.h"
#include "ambrelio/frame/trazabilidad.h"
#include "ambrelio/platform/clock.h"
#include "answer.h"
#include "generated_mill.h"

namespace ambrelio::bench {

class Mill {
 public:
  // The settings of the folder name the database. Ends the program when it does not open.
  Mill(const std::string& folder, std::shared_ptr<dao::DBEngine> engine);

  dao::Workspace& workspace() { return session.Workspace(); }
  dao::Database& database() { return session.Database(); }

  Session session;
  Trazabilidad root{session};
};

// A folder with the settings of a mill of this size, and the database's name among them.
void WriteSettings(const std::string& folder, const SeasonSize& size, const std::string& database);

using AskMill = std::function<void(Mill&, Answer&)>;

// A moment after everything that the season holds, for the clock while questions are asked.
OleDate AfterTheSeason();

constexpr int kAskedDischarge = 30;  // of another hopper than the picked one
constexpr int16_t kClasses = 5;      // of a composition
constexpr int16_t kMillLine = 1;
constexpr double kShareOut = 0.5;

// All rows of a recordset: what the text selects, or a table.
void AddRows(dao::Database& database, const std::string& source, Answer& answer);
// The rows of a member's list.
void AddList(const Variant& list, Answer& answer);

AskMill Query(const std::string& text);
AskMill TankComposition(int16_t tank, int16_t clase);
// Of the discharge that is asked about.
void AskWeight(Mill& mill, Answer& answer);

// Ends the program when something was not done.
void Require(bool done, const char* what);

using AddSum = std::function<void(const std::string& sum, Answer& answer)>;

// A change and its undoing; as long as answers are kept, with the sums before, between and after.
void ChangeAndUndo(const std::vector<std::string>& sums, const AddSum& add, Answer& answer,
                   const std::function<void()>& change, const std::function<void()>& undo);

// What the tables hold of a discharge.
std::vector<std::string> DischargeSums(const GeneratedSeason& season);
AskMill DischargeAndRestore(const GeneratedSeason& season);

}  // namespace ambrelio::bench
