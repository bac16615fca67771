// The program rovescio from its command line to its exit status.
#pragma once

namespace rovescio::cli {

int run(int argc, char** argv);

}  // namespace rovescio::cli
