#include "random_queries.h"

#include <utility>

namespace ambrelio::test {

namespace {

constexpr int kMostLeaves = 6;

std::string Listed(const std::vector<std::string>& parts) {
  std::string list;
  for (const std::string& part : parts) list += (list.empty() ? "" : ", ") + part;
  return list;
}

}  // namespace

Kind RandomQueries::AnyKind() {
  const int dice = chance_.Below(10);
  return dice < 6 ? Kind::kNumber : dice < 9 ? Kind::kText : Kind::kTruth;
}

const NamedColumn* RandomQueries::Find(const Columns& columns, Kind kind) {
  std::vector<const NamedColumn*> found;
  for (const NamedColumn& column : columns) {
    if (column.kind == kind) found.push_back(&column);
  }
  return found.empty() ? nullptr : chance_.Of(found);
}

std::string RandomQueries::Literal(Kind kind) {
  static const std::vector<std::string> kNumbers = {"0", "1", "2", "3", "0.5", "0.125"};
  static const std::vector<std::string> kTexts = {"'a'", "'A'", "'b '", "'B'", "'x'"};
  static const std::vector<std::string> kTruths = {"True", "False"};
  if (chance_.Odds(3)) return "Null";
  return chance_.Of(kind == Kind::kNumber ? kNumbers : kind == Kind::kText ? kTexts : kTruths);
}

std::string RandomQueries::Column(Kind kind) {
  if (scopes_.empty()) return Literal(kind);
  const bool outer = scopes_.size() > 1 && reaches_out_ && chance_.Odds(35);
  const size_t at = outer ? static_cast<size_t>(chance_.Below(static_cast<int>(scopes_.size()) - 1))
                          : scopes_.size() - 1;
  const NamedColumn* column = Find(scopes_[at], kind);
  return column == nullptr ? Literal(kind) : column->name;
}

std::string RandomQueries::Expr(Kind kind, int depth) {
  switch (kind) {
    case Kind::kNumber:
      return Number(depth);
    case Kind::kText:
      return Text(depth);
    default:
      return chance_.Odds(60) ? Column(kind) : Condition(depth);
  }
}

std::string RandomQueries::Number(int depth) {
  if (depth <= 0) return chance_.Odds(75) ? Column(Kind::kNumber) : Literal(Kind::kNumber);
  const auto inner = [&] { return Number(depth - 1); };
  switch (chance_.Below(12)) {
    case 0:
      return "IIf(" + Condition(depth - 1) + ", " + inner() + ", " + inner() + ")";
    case 1:
      return "IIf(IsNull(" + Column(Kind::kNumber) + "), " + inner() + ", " + inner() + ")";
    case 2:
      return "Nz(" + inner() + ", " + inner() + ")";
    case 3:
      return "(" + inner() + " + " + inner() + ")";
    case 4:
      return "(" + inner() + " * " + inner() + ")";
    case 5:
      return "(-" + Column(Kind::kNumber) + ")";
    case 6:
      return "Len(" + Text(depth - 1) + ")";
    case 7:
      return reaches_out_ && leaves_ < kMostLeaves ? Scalar() : Column(Kind::kNumber);
    default:
      return Column(Kind::kNumber);
  }
}

std::string RandomQueries::Text(int depth) {
  if (depth <= 0) return chance_.Odds(75) ? Column(Kind::kText) : Literal(Kind::kText);
  switch (chance_.Below(8)) {
    case 0:
      return "IIf(" + NullTest(depth - 1) + ", " + Text(depth - 1) + ", " + Text(depth - 1) + ")";
    case 1:
      return "Nz(" + Column(Kind::kText) + ", " + Text(depth - 1) + ")";
    case 2:
      return "(" + Text(depth - 1) + " & " + Expr(AnyKind(), depth - 1) + ")";
    case 3:
      return "IIf(" + NullTest(depth - 1) + ", " + Text(depth - 1) + ", " + Number(depth - 1) + ")";
    default:
      return Column(Kind::kText);
  }
}

std::string RandomQueries::NullTest(int depth) {
  const Kind kind = AnyKind();
  const std::string tested = chance_.Odds(80) ? Column(kind) : Expr(kind, depth - 1);
  switch (chance_.Below(4)) {
    case 0:
      return "(" + tested + " is null)";
    case 1:
      return "(" + tested + " is not null)";
    case 2:
      return "(not IsNull(" + tested + "))";
    default:
      return "IsNull(" + tested + ")";
  }
}

std::string RandomQueries::Condition(int depth) {
  const auto compared = [&] {
    static const std::vector<std::string> kComparisons = {" = ", " = ", " <> ", " < ", " >= "};
    const Kind kind = chance_.Odds(65) ? Kind::kNumber : Kind::kText;
    return "(" + Expr(kind, depth - 1) + chance_.Of(kComparisons) + Expr(kind, depth - 1) + ")";
  };
  if (depth <= 0) return chance_.Odds(40) ? NullTest(0) : compared();
  const auto inner = [&] { return Condition(depth - 1); };
  switch (chance_.Below(14)) {
    case 0:
    case 1:
      return "(" + inner() + " and " + inner() + ")";
    case 2:
      return "(" + inner() + " or " + inner() + ")";
    case 3:
      return "(not " + inner() + ")";
    case 4:
      return "(" + Number(depth - 1) + " between " + Number(0) + " and " + Number(0) + ")";
    case 5:
      return "(" + Number(depth - 1) + (chance_.Odds(30) ? " not in (" : " in (") + Number(0) +
             ", 1, " + Number(0) + "))";
    case 6:
      return reaches_out_ && leaves_ < kMostLeaves ? Subcondition() : NullTest(depth);
    case 7:
      return chance_.Odds(50) ? Column(Kind::kTruth) : Literal(Kind::kTruth);
    case 8:
      return "(" + inner() + chance_.Of(std::vector<std::string>{" xor ", " eqv ", " imp "}) +
             inner() + ")";
    case 9:
    case 10:
    case 11:
      return NullTest(depth);
    default:
      return compared();
  }
}

std::string RandomQueries::Subcondition() {
  const std::string negation = chance_.Odds(40) ? "not " : "";
  if (chance_.Odds(60)) return "(" + negation + "exists (" + MakeQuery(1, Use::kTest).text + "))";
  const std::string tested = Column(Kind::kNumber);
  Columns columns;
  scopes_.emplace_back();
  const std::string from = From(0, columns);
  scopes_.back() = columns;
  const std::string item = Number(1);
  const std::string where = chance_.Odds(60) ? " where " + Condition(1) : "";
  scopes_.pop_back();
  return "(" + tested + " " + negation + "in (select " + item + " from " + from + where + "))";
}

std::string RandomQueries::Scalar() {
  Columns columns;
  scopes_.emplace_back();
  const std::string from = From(1, columns);
  scopes_.back() = columns;
  std::string text = "(select ";
  text += chance_.Odds(70) ? Aggregated() : Number(1);
  text += " from " + from;
  if (chance_.Odds(70)) text += " where " + Condition(1);
  scopes_.pop_back();
  return text + ")";
}

std::string RandomQueries::Aggregated() {
  const bool outside = std::exchange(reaches_out_, false);
  std::string text;
  switch (chance_.Below(8)) {
    case 0:
      text = "count(*)";
      break;
    case 1:
      text = "count(" + Expr(AnyKind(), 1) + ")";
      break;
    case 2:
      text = "min(" + Number(1) + ")";
      break;
    case 3:
      text = "max(" + Number(1) + ")";
      break;
    case 4:
      text = (chance_.Odds(50) ? "first(" : "last(") + Number(1) + ")";
      break;
    case 5:
      text = "avg(" + Column(Kind::kNumber) + ")";
      break;
    default:
      text = "sum(" + Number(1) + ")";
      break;
  }
  reaches_out_ = outside;
  return text;
}

std::string RandomQueries::OnTerm(const Columns& left, const Columns& right) {
  const Kind kind = chance_.Odds(75) ? Kind::kNumber : Kind::kText;
  const NamedColumn* a = Find(left, kind);
  const NamedColumn* b = Find(right, kind);
  if (a == nullptr || b == nullptr) {
    a = Find(left, Kind::kNumber);
    b = Find(right, Kind::kNumber);
  }
  if (a == nullptr || b == nullptr) {
    return "(IsNull(" + chance_.Of(left).name + ") or IsNull(" + chance_.Of(right).name + "))";
  }
  const NamedColumn& x = *a;
  const NamedColumn& y = *b;
  switch (chance_.Below(10)) {
    case 0:
      return "(" + x.name + " < " + y.name + ")";
    case 1:
      return "((" + x.name + " = " + y.name + ") or IsNull(" + chance_.Of(left).name + "))";
    case 2:
      return "(IIf(IsNull(" + y.name + "), " + x.name + ", " + y.name + ") = " + x.name + ")";
    default:
      return "(" + x.name + " = " + y.name + ")";
  }
}

std::string RandomQueries::On(const Columns& left, const Columns& right) {
  std::string on = OnTerm(left, right);
  while (chance_.Odds(30)) on += " and " + OnTerm(left, right);
  return on;
}

std::string RandomQueries::Source(int depth, Columns& columns) {
  ++leaves_;
  const std::string name = NewName("s");
  if (depth > 0 && chance_.Odds(40)) {
    // A derived table sees nothing of what stands around it.
    auto around = std::exchange(scopes_, {});
    const bool reached_out = std::exchange(reaches_out_, true);
    const Query query = MakeQuery(depth - 1, Use::kSource);
    scopes_ = std::move(around);
    reaches_out_ = reached_out;
    for (const NamedColumn& column : query.columns) {
      columns.push_back({name + "." + column.name, column.kind});
    }
    return "(" + query.text + ") as " + name;
  }
  if (depth > 0 && chance_.Odds(4)) {
    columns.push_back({name + ".one", Kind::kNumber});
    return "(select 1 as one) as " + name;
  }
  const NamedSource& source = chance_.Of(sources_);
  for (const NamedColumn& column : source.columns) {
    columns.push_back({name + "." + column.name, column.kind});
  }
  return source.name + " as " + name;
}

std::string RandomQueries::Join(int depth, Columns& columns) {
  if (depth <= 0 || leaves_ >= kMostLeaves || chance_.Odds(30)) return Source(depth, columns);
  static const std::vector<std::string> kJoins = {" inner join ", " left join ", " left join ",
                                                  " left join ", " right join "};
  Columns right;
  std::string text = "(" + Join(depth - 1, columns);
  text += chance_.Of(kJoins) + Join(depth - 1, right);
  text += " on " + On(columns, right) + ")";
  columns.insert(columns.end(), right.begin(), right.end());
  return text;
}

std::string RandomQueries::From(int depth, Columns& columns) {
  std::string text = Join(depth, columns);
  if (leaves_ < kMostLeaves && chance_.Odds(10)) {
    Columns others;
    text += ", " + Join(depth - 1, others);
    columns.insert(columns.end(), others.begin(), others.end());
  }
  return text;
}

RandomQueries::Kinds RandomQueries::SomeKinds(bool text) {
  Kinds kinds;
  do {
    Kind kind = AnyKind();
    if (kind == Kind::kText && !text) kind = Kind::kNumber;
    kinds.push_back(kind);
  } while (kinds.size() < 4 && chance_.Odds(65));
  return kinds;
}

std::string RandomQueries::Order(const std::vector<std::string>& keys) {
  std::string text;
  for (const std::string& key : keys) {
    text += (text.empty() ? " order by " : ", ") + key + (chance_.Odds(40) ? " desc" : "");
  }
  return text;
}

std::vector<std::string> RandomQueries::GroupedItems(const Kinds& kinds, std::string& tail,
                                                     std::vector<std::string>& groups) {
  const bool reached_out = std::exchange(reaches_out_, false);
  std::vector<std::string> items;
  for (const Kind kind : kinds) {
    const bool aggregate = chance_.Odds(50);
    if (aggregate && kind == Kind::kNumber) {
      items.push_back(Aggregated());
    } else if (aggregate && kind == Kind::kText) {
      items.push_back("first(" + Text(1) + ")");
    } else {
      groups.push_back(chance_.Odds(60) ? Column(kind) : Expr(kind, 2));
      items.push_back(groups.back());
    }
  }
  if (groups.empty() && chance_.Odds(60)) groups.push_back(Column(Kind::kNumber));
  if (!groups.empty()) tail += " group by " + Listed(groups);
  if (chance_.Odds(25)) {
    tail += " having " + Aggregated() + (chance_.Odds(50) ? " > 1" : " is not null");
  }
  reaches_out_ = reached_out;
  return items;
}

RandomQueries::Query RandomQueries::MakeSelect(int depth, Use use, const Kinds& kinds) {
  enum class Form : uint8_t { kPlain, kGrouped, kDistinct };
  const int dice = chance_.Below(100);
  const Form form = dice < 70 ? Form::kPlain : dice < 90 ? Form::kGrouped : Form::kDistinct;
  Query query;
  Columns columns;
  scopes_.emplace_back();
  const std::string from = From(depth, columns);
  scopes_.back() = columns;

  std::string tail = " from " + from;
  if (chance_.Odds(70)) tail += " where " + Condition(3);
  std::vector<std::string> items;
  std::vector<std::string> keys;
  if (form == Form::kGrouped) {
    items = GroupedItems(kinds, tail, keys);
  } else {
    const bool reached_out = reaches_out_;
    if (form == Form::kDistinct) reaches_out_ = false;
    for (const Kind kind : kinds) items.push_back(Expr(kind, 2));
    reaches_out_ = reached_out;
    if (form == Form::kPlain && chance_.Odds(50)) keys.push_back(Expr(AnyKind(), 1));
  }
  keys.push_back(std::to_string(chance_.Below(static_cast<int>(items.size())) + 1));
  if (form == Form::kDistinct) keys = {keys.back()};

  std::string top;
  if (use != Use::kTest && chance_.Odds(12)) {
    top =
        chance_.Odds(70) ? "top " + std::to_string(chance_.Below(4) + 1) + " " : "top 50 percent ";
  }
  if (use == Use::kStatement || !top.empty()) {
    if (chance_.Odds(75)) tail += Order(keys);
  }
  query.text = "select " + std::string(form == Form::kDistinct ? "distinct " : "") + top;
  for (size_t i = 0; i < items.size(); ++i) {
    query.columns.push_back({NewName("c"), kinds[i]});
    items[i] += " as " + query.columns.back().name;
  }
  query.text += Listed(items) + tail;
  scopes_.pop_back();
  return query;
}

RandomQueries::Query RandomQueries::MakeUnion(int depth, Use use) {
  const bool all = chance_.Odds(50);
  const bool ordered = use == Use::kStatement && chance_.Odds(50);
  const Kinds kinds = SomeKinds(!all || (use == Use::kStatement && !ordered));
  const auto side = [&] {
    return MakeSelect(depth, use == Use::kTest ? use : Use::kSource, kinds);
  };
  const Query left = side();
  const Query right = side();
  Query query;
  query.text = "(" + left.text + ") union " + (all ? "all " : "") + "(" + right.text + ")";
  if (ordered) query.text += Order({"1"});
  query.columns = left.columns;
  return query;
}

RandomQueries::Query RandomQueries::MakeQuery(int depth, Use use) {
  if (leaves_ < kMostLeaves - 1 && chance_.Odds(12)) return MakeUnion(depth, use);
  return MakeSelect(depth, use, SomeKinds(true));
}

std::string RandomQueries::Statement() {
  leaves_ = 0;
  return MakeQuery(3, Use::kStatement).text;
}

std::string RandomQueries::Stored(const std::string& name, NamedSource& stored) {
  leaves_ = 2;
  Query query = MakeQuery(2, Use::kSource);
  stored = {name, std::move(query.columns)};
  return query.text;
}

std::string RandomQueries::Action(const std::vector<NamedSource>& tables) {
  leaves_ = 1;
  const NamedSource& table = chance_.Of(tables);
  std::vector<std::string> fields;
  Kinds kinds;
  for (const NamedColumn& column : table.columns) {
    fields.push_back(column.name);
    kinds.push_back(column.kind);
  }
  const int dice = chance_.Below(10);
  if (dice < 4) {
    return "insert into " + table.name + " (" + Listed(fields) + ") " +
           MakeSelect(2, Use::kStatement, kinds).text;
  }
  Columns columns;
  for (const NamedColumn& column : table.columns) {
    columns.push_back({(dice < 8 ? "w." : table.name + ".") + column.name, column.kind});
  }
  const NamedColumn set = chance_.Of(columns);
  if (dice >= 8) {
    scopes_.push_back(columns);
    const std::string text = "delete from " + table.name + " where " + Condition(3);
    scopes_.pop_back();
    return text;
  }
  Columns others;
  const NamedSource& other = chance_.Of(tables);
  for (const NamedColumn& column : other.columns) {
    others.push_back({"o." + column.name, column.kind});
  }
  std::string text = "update (select * from " + table.name + " as w";
  text += (chance_.Odds(50) ? " left join " : " inner join ") + other.name + " as o on ";
  text += On(columns, others);
  columns.insert(columns.end(), others.begin(), others.end());
  scopes_.push_back(columns);
  if (chance_.Odds(70)) text += " where " + Condition(3);
  text += ") set " + set.name + " = " + Expr(set.kind, 2);
  scopes_.pop_back();
  return text;
}

}  // namespace ambrelio::test
