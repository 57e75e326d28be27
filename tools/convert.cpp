#include "tools/command.h"

namespace tool {

void add_convert_command(CLI::App &app) {
    app.add_subcommand("convert", "Convert frames of a Y4M stream to PNG pictures");
}

}  // namespace tool
