#pragma once

#include <CLI/App.hpp>

#include "tools/kelst/Report.h"

namespace kelst {

// Each adds its command to `app`, to run when the command line names it. `app` and `report`
// outlive the command.
void AddInfo(CLI::App& app, Report& report);
void AddLs(CLI::App& app, Report& report);
void AddCat(CLI::App& app, Report& report);
void AddProps(CLI::App& app, Report& report);
void AddFind(CLI::App& app, Report& report);
void AddHexdump(CLI::App& app, Report& report);
void AddExtract(CLI::App& app, Report& report);
void AddCheck(CLI::App& app, Report& report);
void AddMap(CLI::App& app, Report& report);
void AddReport(CLI::App& app, Report& report);

}  // namespace kelst
