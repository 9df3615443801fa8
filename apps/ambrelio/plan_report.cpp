#include "plan_report.h"

#include <fmt/format.h>

#include <vector>

#include "sql_layout.h"

namespace ambrelio::cli {
namespace {

using embedded::Explanation;
using embedded::PlanStep;

std::string Listed(const std::vector<std::string>& words) {
  return words.empty() ? "none" : fmt::format("{}", fmt::join(words, ", "));
}

std::string RewritesText(const Explanation& explanation) {
  std::vector<std::string> made;
  std::vector<std::string> off;
  for (const embedded::ExplainedRewrite& rewrite : explanation.rewrites) {
    if (rewrite.made > 0) made.push_back(fmt::format("{} {}", rewrite.name, rewrite.made));
    if (!rewrite.on) off.push_back(rewrite.name);
  }
  std::string text = "rewrites: " + Listed(made);
  if (explanation.plan_refused) text += "; SQLite refused what they made";
  if (!off.empty()) text += "; off: " + Listed(off);
  return text + '\n';
}

std::string ParametersText(const std::vector<Variant>& literals) {
  std::vector<std::string> parameters;
  parameters.reserve(literals.size());
  for (const Variant& literal : literals) {
    parameters.push_back(fmt::format("?{} = {}", parameters.size() + 1, JsonLine(ToJson(literal))));
  }
  return "parameters: " + Listed(parameters) + '\n';
}

std::string SetIn(const std::string& lines) {
  std::string text;
  for (size_t start = 0; start < lines.size();) {
    const size_t end = lines.find('\n', start) + 1;
    text += "  " + lines.substr(start, end - start);
    start = end;
  }
  return text;
}

void AddSteps(const std::vector<PlanStep>& steps, const std::string& indent, std::string& text) {
  for (const PlanStep& step : steps) {
    text += indent + step.text + '\n';
    AddSteps(step.below, indent + "  ", text);
  }
}

Json StepsJson(const std::vector<PlanStep>& steps) {
  Json list = Json::array();
  for (const PlanStep& step : steps) {
    Json one = {{"step", step.text}};
    if (!step.below.empty()) one["below"] = StepsJson(step.below);
    list.push_back(std::move(one));
  }
  return list;
}

}  // namespace

std::string PlanText(const Explanation& explanation) {
  std::string text = RewritesText(explanation) + ParametersText(explanation.literals);
  text += fmt::format("prepared for: {}\n",
                      explanation.by_text ? "this text alone" : "every text of its shape");
  for (const embedded::ExplainedStatement& statement : explanation.statements) {
    text += fmt::format("\n{}:\n{}", statement.use, SetIn(LaidOutSql(statement.sql)));
    if (statement.plan.empty()) continue;
    text += "  plan:\n";
    AddSteps(statement.plan, "    ", text);
  }
  return text;
}

Json PlanJson(const Explanation& explanation) {
  Json rewrites = Json::array();
  for (const embedded::ExplainedRewrite& rewrite : explanation.rewrites) {
    rewrites.push_back({{"name", rewrite.name}, {"on", rewrite.on}, {"made", rewrite.made}});
  }
  Json statements = Json::array();
  for (const embedded::ExplainedStatement& statement : explanation.statements) {
    statements.push_back(
        {{"use", statement.use}, {"sql", statement.sql}, {"plan", StepsJson(statement.plan)}});
  }
  return {{"shape", explanation.shape},
          {"by_text", explanation.by_text},
          {"rewrites", std::move(rewrites)},
          {"plan_refused", explanation.plan_refused},
          {"parameters", ToJson(Variant(explanation.literals))},
          {"statements", std::move(statements)}};
}

}  // namespace ambrelio::cli
