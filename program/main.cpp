#include "CommandLine.h"

int main(int argc, char** argv) { return Editor::runProgram(argc, argv); }
