#include "client/run.h"
#include "client/secret.h"

int main(int argc, char** argv) {
    ifwatch::wipe_dead_stack();  // what started the program has read the command line, and kept pieces of it there
    return ifwatch::run(argc, argv);
}
