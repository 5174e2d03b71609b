#include "app/application.h"

#include <csignal>

int main(int argc, char **argv) {
    // Past a file-size limit a save fails with its message instead of the
    // program dying without one.
    std::signal(SIGXFSZ, SIG_IGN);
    tramline::app::CKELMAApp app(argc, argv);
    return app.run();
}
