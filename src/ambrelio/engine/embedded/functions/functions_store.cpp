// Values on their way into a column. Without `strict` nothing here fails: what does not convert is
// stored as Null, and text is cut.
#include "ambrelio/dao/errors.h"
#include "ambrelio/engine/embedded/functions/function_support.h"
#include "ambrelio/platform/text_encoding.h"

namespace ambrelio::embedded {

namespace {

bool Strict(Arguments arguments) { return sqlite3_value_int(arguments.back()) != 0; }

// Sets the converted value, or what stands for one that does not convert (Null unless said).
template <class Convert>
void Store(Arguments arguments, const Convert& convert) {
  try {
    convert(arguments[0]);
  } catch (const AutomationError&) {
    if (Strict(arguments)) dao::Raise(dao::DaoError::kConversion, dao::source::kDatabase);
  }
}

template <int32_t (*Convert)(sqlite3_value*)>
void StoreWhole(sqlite3_context* context, Arguments arguments) {
  Store(arguments,
        [context](sqlite3_value* value) { sqlite3_result_int(context, Convert(value)); });
}

template <double (*Convert)(sqlite3_value*)>
void StoreNumber(sqlite3_context* context, Arguments arguments) {
  Store(arguments, [context](sqlite3_value* value) { SetNumber(context, Convert(value)); });
}

// A Yes/No column holds no Null: nothing known is False.
void StoreBoolean(sqlite3_context* context, Arguments arguments) {
  SetBoolean(context, false);
  Store(arguments, [context](sqlite3_value* value) {
    if (!IsNull(value)) SetBoolean(context, BooleanOf(value));
  });
}

void StoreDate(sqlite3_context* context, Arguments arguments) {
  Store(arguments, [context](sqlite3_value* value) { SetDate(context, DateOf(value)); });
}

void StoreText(sqlite3_context* context, Arguments arguments) {
  std::string buffer;
  const std::string_view text = TextOf(arguments[0], buffer);
  const auto size = static_cast<size_t>(sqlite3_value_int(arguments[1]));
  if (size == 0 || text.size() <= size || Utf8Length(text) <= size) return SetText(context, text);
  if (Strict(arguments)) dao::Raise(dao::DaoError::kTextTooLong, dao::source::kDatabase);
  SetText(context, Utf8Prefix(text, size));
}

constexpr Function kStoreFunctions[] = {
    {"jet_to_boolean", 2, 2, StoreBoolean, Nulls::kAreTaken},
    {"jet_to_byte", 2, 2, StoreWhole<ByteOf>},
    {"jet_to_integer", 2, 2, StoreWhole<IntegerOf>},
    {"jet_to_long", 2, 2, StoreWhole<LongOf>},
    {"jet_to_currency", 2, 2, StoreNumber<CurrencyOf>},
    {"jet_to_single", 2, 2, StoreNumber<SingleOf>},
    {"jet_to_double", 2, 2, StoreNumber<NumberOf>},
    {"jet_to_date", 2, 2, StoreDate},
    {"jet_to_text", 3, 3, StoreText},
};

}  // namespace

void RegisterStoring(sqlite3* db) { RegisterScalars(db, kStoreFunctions); }

}  // namespace ambrelio::embedded
