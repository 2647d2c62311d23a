#include "client/run.h"

int main(int argc, char** argv) { return ifwatch::run(argc, argv); }
