#include <unistd.h>

#include "evaluator/calc_command.h"

int main(int argc, char** argv) {
    return felthawk::RunCalcCommand(argc, argv, STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO);
}
