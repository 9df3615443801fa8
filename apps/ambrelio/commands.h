// The subcommands. Each declares its options on the parser and, when it is the one given, runs.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "console.h"
#include "failure.h"
#include "mill.h"

namespace ambrelio::cli {

// What the subcommands share; it outlives the parsing.
struct Context {
  Console& console;
  std::string trace_path{};  // "" for no trace
  ExitCode exit_code = ExitCode::kSuccess;
};

void AddCreate(CLI::App& app, Context& context);
void AddJournal(CLI::App& app, Context& context);
void AddCall(CLI::App& app, Context& context);
void AddSql(CLI::App& app, Context& context);
void AddCheck(CLI::App& app, Context& context);
void AddConvert(CLI::App& app, Context& context);
void AddSensors(CLI::App& app, Context& context);
void AddGateway(CLI::App& app, Context& context);
void AddDeposito(CLI::App& app, Context& context);
void AddVaciado(CLI::App& app, Context& context);
void AddTolva(CLI::App& app, Context& context);
void AddDescarga(CLI::App& app, Context& context);
void AddHistoria(CLI::App& app, Context& context);
void AddReferentes(CLI::App& app, Context& context);
void AddPassword(CLI::App& app, Context& context);

// Declares the whole command line: every subcommand, and what stands before one.
void Declare(CLI::App& app, Context& context);

// Declares --app and --vardex3.
CLI::Option* AddMillOptions(CLI::App& command, MillOptions& options);

}  // namespace ambrelio::cli
