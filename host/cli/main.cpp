// Entry of the program rovescio.
#include "cli/program.h"

int main(int argc, char** argv) {
    return rovescio::cli::run(argc, argv);
}
