#pragma once
// The commands of quillon, in the order of the help; a file each, with options, examples and work.

#include "commands/CommandLine.h"

void addCallCommand(CommandLine& line);
void addScriptCommand(CommandLine& line);
void addDescribeCommand(CommandLine& line);
void addReferenceCommand(CommandLine& line);
void addInspectCommand(CommandLine& line);
void addImportCommand(CommandLine& line);
void addTilesCommand(CommandLine& line);
void addExportCommand(CommandLine& line);
void addTourCommand(CommandLine& line);
void addMergeCommand(CommandLine& line);
void addFixCommand(CommandLine& line);
void addCompletionsCommand(CommandLine& line);

// Adds --out, --size, --tiles, --no-clobber and --force, for export and tour.
struct ExportOptions;
void addOutSizeAndTiles(CLI::App& command, ExportOptions& options);
