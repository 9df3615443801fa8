#include <optional>
#include <string>

#include "commands.h"
#include "report.h"

namespace ambrelio::cli {
namespace {

constexpr char kPasswordDescription[] =
    R"help(Encodes the password of a database, or checks a stored one.

Examples:
  ambrelio password --encode < password.txt
  ambrelio password --encode secreta
  ambrelio password --check x131A83A899E959DE2F2A20x
  ambrelio password --app mill

What is stored is an obfuscation that keeps the password from being read over a
shoulder. It is no protection: whoever has this program can undo it.

--encode prints the line for section GENERAL of Vardex.ini. Without a text, or
with -, the password is the first line of standard input, which keeps it out of
the shell's history. --check tells whether a value can be decoded. --app tells it
of the mill's own, and whether the mill's database opens with it.

The exit code is 2 for a value that cannot be decoded, 3 for a database that does
not open.
)help";

constexpr const char* kFromInput = "-";

struct PasswordOptions {
  MillOptions mill;
  std::string text = kFromInput;
  std::string value;
  bool show = false;
  OutputForm form = OutputForm::kTable;
};

std::string FirstLine(std::istream& in) {
  std::string line;
  if (!std::getline(in, line)) {
    throw Failure(ExitCode::kWrongInput, "standard input holds no password");
  }
  if (line.ends_with('\r')) line.pop_back();
  return line;
}

void Encode(const PasswordOptions& options, Context& context) {
  const bool from_input = options.text == kFromInput;
  const std::string stored =
      frame::FramePassword(from_input ? FirstLine(context.console.in) : options.text);
  if (options.form == OutputForm::kTable) {
    Write(context.console, std::string(frame::kPasswordKey) + '=' + stored + '\n');
  } else {
    const Report report{{{frame::kPasswordKey, frame::kPasswordKey}}, {{stored}}, /*single=*/true};
    Write(context.console, Render(report, options.form));
  }
  Flush(context.console);
}

class Findings {
 public:
  Findings() { report_.single = true; }
  void Add(const char* key, const char* heading, Variant value) {
    report_.columns.push_back({key, heading});
    report_.rows[0].push_back(std::move(value));
  }
  void Tell(const PasswordOptions& options, Context& context,
            const std::optional<std::string>& password) {
    if (options.show) {
      Add("contrasena", "Contraseña", password ? Variant(*password) : Variant::Null());
    }
    Write(context.console, Render(report_, options.form));
    Flush(context.console);
  }

 private:
  Report report_{{}, {{}}};
};

[[noreturn]] void FailDecoding() {
  throw Failure(ExitCode::kWrongInput,
                "the stored value cannot be decoded; the library takes it for no password");
}

void CheckValue(const PasswordOptions& options, Context& context) {
  const auto password = frame::UnframePassword(options.value);
  Findings findings;
  findings.Add("descifrable", "Descifrable", password.has_value());
  findings.Tell(options, context, password);
  if (!password) FailDecoding();
}

std::string StoredPassword(const MillOptions& mill) {
  frame::HostIni ini = frame::OpenHostIni(mill.app, mill.vardex3);
  ini.file.SetSection("GENERAL");
  return ini.file.Read(frame::kPasswordKey);
}

std::optional<Failure> WhyNotOpened(Session& session, const frame::DatabaseSettings& settings) {
  try {
    OpenDatabase(session, settings)->Close();
    return std::nullopt;
  } catch (const Failure& failure) {
    return failure;
  }
}

void CheckMill(const PasswordOptions& options, Context& context) {
  TraceFile trace(context.trace_path);
  Session session;
  session.UseEngine(trace.MakeEngine());
  const frame::DatabaseSettings settings = ReadSettings(session, options.mill);
  const std::string stored = StoredPassword(options.mill);
  const auto password = frame::UnframePassword(stored);
  const auto failure = WhyNotOpened(session, settings);

  Findings findings;
  findings.Add("guardada", "Contraseña guardada", !stored.empty());
  findings.Add("descifrable", "Descifrable",
               stored.empty() ? Variant::Null() : Variant(password.has_value()));
  findings.Add("abre", "Abre la base de datos", !failure.has_value());
  findings.Tell(options, context, password);
  trace.Close();
  if (failure) throw Failure(*failure);
  if (!stored.empty() && !password) FailDecoding();
}

}  // namespace

void AddPassword(CLI::App& app, Context& context) {
  CLI::App* command = app.add_subcommand("password", kPasswordDescription);
  auto options = std::make_shared<PasswordOptions>();
  auto* encode = command->add_option("--encode", options->text, "Encode that password")
                     ->type_name("TEXT")
                     ->expected(0, 1)
                     ->default_str(kFromInput);
  auto* check =
      command->add_option("--check", options->value, "Check that stored value")->excludes(encode);
  auto* mill = AddMillOptions(*command, options->mill)->excludes(encode)->excludes(check);
  command->add_flag("--show", options->show, "Print the password, too")->excludes(encode);
  AddOutputOptions(*command, options->form);
  command->callback([=, &context] {
    if (encode->count() > 0) return Encode(*options, context);
    if (check->count() > 0) return CheckValue(*options, context);
    if (mill->count() > 0) return CheckMill(*options, context);
    throw Failure(ExitCode::kWrongInput, "one of --encode, --check and --app is expected");
  });
}

}  // namespace ambrelio::cli
