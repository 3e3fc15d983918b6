// guid new|decode: track GUIDs and GUID file names.
#include <iostream>

#include "Command.h"
#include "Identifiers.h"

namespace tkk {

namespace {

void Print(const nlohmann::json& fields, bool json) {
  if (json) {
    std::cout << fields.dump(2) << "\n";
    return;
  }
  for (const auto& field : fields.items()) {
    const auto& value = field.value();
    std::string text = value.is_string() ? value.get<std::string>() : value.is_boolean() ? (value.get<bool>() ? "yes" : "no") : value.dump();
    std::cout << field.key() << std::string(field.key().size() < 12 ? 12 - field.key().size() : 1, ' ')
              << text << "\n";
  }
}

}  // namespace

Runner AttachGuid(CLI::App& app) {
  struct Args {
    bool maker = false;
    bool dev = false;
    bool json = false;
    std::string text;
  };
  auto args = std::make_shared<Args>();
  app.require_subcommand(1);
  CLI::App* make = app.add_subcommand("new", "A new track GUID and a new track file name");
  make->add_flag("--maker", args->maker, "For a maker's track");
  make->add_flag("--dev", args->dev, "For a development track");
  make->add_flag("--json", args->json, "Machine-readable output");
  CLI::App* decode = app.add_subcommand("decode", "What a GUID or a track file name says");
  decode->add_option("ID", args->text, "16 hexadecimal digits, or a track file name")->required();
  decode->add_flag("--json", args->json, "Machine-readable output");
  return [args, make] {
    Print(*make ? NewIdentifiers(args->maker, args->dev) : DecodeIdentifier(args->text), args->json);
    return kExitOk;
  };
}

}  // namespace tkk
