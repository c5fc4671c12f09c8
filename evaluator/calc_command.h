// felthawk-calc: the command-line evaluator.
//
//   felthawk-calc --cells "AS,KS,,,,," [--seats MHHHHHHHHH] [--pretty] [--explain]
//   felthawk-calc --batch [--explain] < tables
//
// Single mode prints one JSON object on one line (or a panel with --pretty);
// bad input goes to stderr with exit status 2. Batch mode reads one table per
// line and answers each with one JSON line, an {"error": ...} line for a bad
// one, and streams: every answer is written out before more input is awaited.
#pragma once

namespace felthawk {

int RunCalcCommand(int argc, char** argv, int inputFd, int outputFd, int errorFd);

}  // namespace felthawk
