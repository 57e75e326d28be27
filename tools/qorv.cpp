// qorv: a command-line program on the public header of libqorv_skia, and the living example of its use.
#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <new>

#include "qorv_skia.h"
#include "tools/base/output.h"
#include "tools/commands/command.h"

namespace {

constexpr const char kMoreHelp[] = "Run with --help for more information.\n";

std::string failure_message(const CLI::App *program, const CLI::Error &error) {
    const std::vector<std::string> unknown = program->remaining();
    if (program->get_subcommands().empty() && !unknown.empty()) {
        return "qorv: there is no command or option '" + unknown[0] + "'\n" + kMoreHelp;
    }
    return "qorv: " + CLI::FailureMessage::simple(program, error);
}

void set_up(CLI::App &app) {
    app.name("qorv");
    app.require_subcommand(1);
    app.set_version_flag("--version", std::to_string(QORV_VERSION_MAJOR) + "." + std::to_string(QORV_VERSION_MINOR) +
                                          "." + std::to_string(QORV_VERSION_PATCH));
    app.failure_message([](const CLI::App *program, const CLI::Error &error) {
        return tool::printable(failure_message(program, error));
    });
    app.footer(
        "Run 'qorv COMMAND --help' for the options of a command, 'man qorv' for recipes.\n"
        "Exit codes: 0 success, 1 the work failed (the reason is on standard error), 2 wrong usage.");
    tool::add_compare_command(app);
    tool::add_convert_command(app);
    tool::add_headers_command(app);
    tool::add_keyframes_command(app);
    tool::add_md5_command(app);
    tool::add_resize_command(app);
}

int fail(const char *reason) {
    std::fflush(stdout);
    std::fprintf(stderr, "qorv: %s\n", tool::printable(reason).c_str());
    return 1;
}

int run(CLI::App &app, int argc, char **argv) {
    try {
        app.parse(argc, argv);
        return 0;
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? 0 : 2;
    } catch (const tool::UsageError &error) {
        std::fprintf(stderr, "qorv: %s\n%s", tool::printable(error.what()).c_str(), kMoreHelp);
        return 2;
    } catch (const std::bad_alloc &) {
        return fail("there is not enough memory");
    } catch (const std::exception &error) {
        return fail(error.what());
    }
}

}  // namespace

int main(int argc, char **argv) {
    tool::remove_unfinished_files_on_signals();
    CLI::App app{"Converts, measures and inspects pictures and streams with libqorv_skia."};
    set_up(app);
    const int status = run(app, argc, argv);
    // CLI11 prints help and version through std::cout, which shares the buffer of stdout.
    if (status == 0 && (!std::cout.flush() || std::fflush(stdout) != 0 || std::ferror(stdout) != 0)) {
        return fail((std::string("standard output cannot be written: ") + std::strerror(errno)).c_str());
    }
    return status;
}
