// qorv: a command-line program on the public header of libqorv_skia, and the living example of its use.
#include <cstdio>
#include <new>

#include "qorv_skia.h"
#include "tools/command.h"

int main(int argc, char **argv) {
    CLI::App app{"Converts, measures and inspects pictures and streams with libqorv_skia."};
    app.name("qorv");
    app.require_subcommand(1);
    app.set_version_flag("--version", std::to_string(QORV_VERSION_MAJOR) + "." + std::to_string(QORV_VERSION_MINOR) +
                                          "." + std::to_string(QORV_VERSION_PATCH));
    app.failure_message([](const CLI::App *program, const CLI::Error &error) {
        const std::vector<std::string> unknown = program->remaining();
        if (program->get_subcommands().empty() && !unknown.empty()) {
            return "qorv: there is no command or option '" + unknown[0] + "'\nRun with --help for more information.\n";
        }
        return "qorv: " + CLI::FailureMessage::simple(program, error);
    });
    app.footer(
        "Run 'qorv COMMAND --help' for the options of a command.\n"
        "Exit codes: 0 success, 1 the work failed (the reason is on standard error), 2 wrong usage.");
    tool::add_compare_command(app);
    tool::add_convert_command(app);
    tool::add_headers_command(app);
    tool::add_keyframes_command(app);
    tool::add_md5_command(app);
    tool::add_resize_command(app);

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? 0 : 2;
    } catch (const std::bad_alloc &) {
        std::fprintf(stderr, "qorv: there is not enough memory\n");
        return 1;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "qorv: %s\n", error.what());
        return 1;
    }
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
        std::fprintf(stderr, "qorv: standard output could not be written\n");
        return 1;
    }
    return 0;
}
