#include "host/catalogue_command_options.h"

#include <CLI/CLI.hpp>
#include <string>

#include "host/not_empty.h"

namespace zq::host {
namespace {

/// A subcommand, with what all of them have.
CLI::App* addAction(CLI::App& catalogue, CatalogueCommandOptions& options, const std::string& name,
                    const std::string& what) {
  CLI::App* command = catalogue.add_subcommand(name, what);
  command->callback([&options, name] { options.action = name; });
  command->add_option("--catalogue", options.catalogue, "The catalogue: a file, or a postgresql:// URL")
      ->required()
      ->check(notEmpty());
  command->add_flag("--json", options.json, "Print JSON");
  return command;
}

void addLooking(CLI::App& catalogue, CatalogueCommandOptions& options) {
  CLI::App* list = addAction(catalogue, options, "list", "List the tapes");
  list->footer("Examples:\n  deckhand catalogue list --catalogue tapes.db");
  CLI::App* show = addAction(catalogue, options, "show", "Show the clips of a tape");
  show->add_option("--tape", options.tape, "The tape's name")->required()->check(notEmpty());
  show->footer("Examples:\n  deckhand catalogue show --catalogue tapes.db --tape holiday");
}

void addChange(CLI::App& catalogue, CatalogueCommandOptions& options, const std::string& name,
               const std::string& what) {
  CLI::App* command = addAction(catalogue, options, name, what);
  command->add_option("--clip", options.clips, "A clip's id, repeatable")->check(notEmpty());
  command->add_option("--tape", options.tape, "Clips of this tape, with --from, --to or --all")->check(notEmpty());
  command->add_option("--from", options.from, "Those recorded at this DATE or later")->check(notEmpty());
  command->add_option("--to", options.to, "Those recorded at this DATE or earlier")->check(notEmpty());
  command->add_flag("--all", options.all, "All of the tape");
  command->footer(
      "A DATE is YYYY-MM-DD, the whole day, or YYYY-MM-DDTHH:MM:SS.\n\n"
      "Examples:\n"
      "  deckhand catalogue " +
      name +
      " --catalogue tapes.db --clip 3 --clip 4\n"
      "  deckhand catalogue " +
      name + " --catalogue tapes.db --tape holiday --from 2004-07-15 --to 2004-07-16");
}

void addImport(CLI::App& catalogue, CatalogueCommandOptions& options) {
  CLI::App* command = addAction(catalogue, options, "import", "Store a capture, or a list of what to capture");
  command->add_option("LIST", options.list, "A capture's session.json, an exported tape, CSV, or a CMX 3600 EDL")
      ->required()
      ->check(notEmpty());
  command->add_option("--tape", options.tape, "The tape's name [what the list says]")->check(notEmpty());
  command->add_flag("--skip-bad", options.skipBad, "Leave out rows that are wrong");
  command->footer(
      "CSV has a header with the columns name, tape, in and out; out is the frame after the last one.\n\n"
      "Examples:\n"
      "  deckhand catalogue import --catalogue tapes.db clips/session.json\n"
      "  deckhand catalogue import --catalogue tapes.db --skip-bad assembly.edl");
}

void addExport(CLI::App& catalogue, CatalogueCommandOptions& options) {
  CLI::App* command = addAction(catalogue, options, "export", "Write a tape as a list for other programs");
  command->add_option("--tape", options.tape, "The tape's name")->required()->check(notEmpty());
  command->add_flag("--marked", options.marked, "Only the marked clips");
  command->add_option("--format", options.format, "json (all there is), csv or edl")
      ->check(CLI::IsMember({"json", "csv", "edl"}))
      ->capture_default_str()
      ->check(notEmpty());
  command->add_option("--output", options.output, "A new file for the list [standard output]")->check(notEmpty());
  command->footer(
      "Examples:\n"
      "  deckhand catalogue export --catalogue tapes.db --tape holiday --format csv > holiday.csv\n"
      "  deckhand catalogue export --catalogue tapes.db --tape holiday --marked --format edl --output holiday.edl");
}

}  // namespace

void addCatalogue(CLI::App& app, CatalogueCommandOptions& options) {
  CLI::App* catalogue = app.add_subcommand("catalogue", "Keep what is on the tapes, and choose what to capture again");
  catalogue->require_subcommand(1);
  addLooking(*catalogue, options);
  addChange(*catalogue, options, "mark", "Mark clips to be captured again");
  addChange(*catalogue, options, "unmark", "Take the mark off clips");
  addChange(*catalogue, options, "trash", "Put clips into the trash; their files stay");
  addChange(*catalogue, options, "untrash", "Take clips out of the trash");
  addImport(*catalogue, options);
  addExport(*catalogue, options);
  catalogue->footer(
      "Examples:\n"
      "  deckhand catalogue import --catalogue tapes.db clips/session.json\n"
      "  deckhand catalogue list --catalogue tapes.db\n"
      "  deckhand catalogue mark --catalogue tapes.db --tape holiday --all");
}

}  // namespace zq::host
