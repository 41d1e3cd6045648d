#include "cli/cli.h"

// The program of the commands that make no picture has no worker.
ImageControl* make_cli_worker() {
    return nullptr;
}

void free_cli_worker(ImageControl*) {}
