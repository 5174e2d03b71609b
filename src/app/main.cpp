#include "app/application.h"

int main(int argc, char **argv) {
    tramline::app::CKELMAApp app(argc, argv);
    return app.run();
}
