// felthawk-calc end to end: the real binary, its output contract and its
// answers to bad input.
#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace {

struct CalcRun {
    int status = -1;
    std::string out;
    std::string err;
};

std::string Calc() {
    const char* path = std::getenv("FELTHAWK_CALC");
    return path != nullptr ? path : "felthawk-calc";
}

std::string ReadAll(int fd) {
    std::string text;
    char buffer[4096];
    ssize_t got;
    while ((got = read(fd, buffer, sizeof buffer)) > 0) text.append(buffer, got);
    return text;
}

// A running felthawk-calc with its three standard streams on pipes.
class Process {
  public:
    explicit Process(const std::vector<std::string>& args) {
        int in[2], out[2], err[2];
        EXPECT_EQ(pipe(in), 0);
        EXPECT_EQ(pipe(out), 0);
        EXPECT_EQ(pipe(err), 0);
        pid_ = fork();
        if (pid_ == 0) {
            dup2(in[0], 0);
            dup2(out[1], 1);
            dup2(err[1], 2);
            for (int fd : {in[0], in[1], out[0], out[1], err[0], err[1]}) close(fd);
            std::vector<char*> argv;
            std::string program = Calc();
            argv.push_back(program.data());
            std::vector<std::string> copy = args;
            for (std::string& arg : copy) argv.push_back(arg.data());
            argv.push_back(nullptr);
            execv(argv[0], argv.data());
            _exit(127);
        }
        close(in[0]);
        close(out[1]);
        close(err[1]);
        in_ = in[1];
        out_ = out[0];
        err_ = err[0];
    }

    void Write(const std::string& text) {
        ASSERT_EQ(write(in_, text.data(), text.size()), (ssize_t)text.size());
    }
    void CloseInput() {
        if (in_ >= 0) close(in_);
        in_ = -1;
    }

    // One line of output, waiting at most five seconds for it.
    std::string ReadLine() {
        std::string line;
        char c;
        pollfd ready{out_, POLLIN, 0};
        while (poll(&ready, 1, 5000) > 0 && read(out_, &c, 1) == 1) {
            if (c == '\n') return line;
            line += c;
        }
        return "<no answer: " + line + ">";
    }

    CalcRun Finish() {
        CloseInput();
        CalcRun run;
        run.out = ReadAll(out_);
        run.err = ReadAll(err_);
        waitpid(pid_, &run.status, 0);
        close(out_);
        close(err_);
        return run;
    }

  private:
    pid_t pid_ = -1;
    int in_ = -1, out_ = -1, err_ = -1;
};

CalcRun RunCalc(const std::vector<std::string>& args, const std::string& input = "") {
    Process process(args);
    if (!input.empty()) process.Write(input);
    return process.Finish();
}

int ExitCode(const CalcRun& run) {
    return WIFEXITED(run.status) ? WEXITSTATUS(run.status) : -1;
}

TEST(CalcCommand, SingleTablePrintsOneJsonLine) {
    const CalcRun run = RunCalc({"--cells", "AS,KS,,,,,", "--seats", "MHHHHHHHHH"});
    EXPECT_EQ(ExitCode(run), 0);
    EXPECT_EQ(
        run.out,
        "{\"cells\": \"AS,KS,,,,,\", \"seats\": \"MHHHHHHHHH\", "
        "\"odds\": [\"44\", \"22\", \"4\", \"3 \", \"7\", \"2\", \"\", \"\"], "
        "\"chances\": [\"44 %\", \"22 %\", \"04 %\", \"03 %\", \"07 %\", \"02 %\", \"\", \"\"], "
        "\"stage\": 2, \"strength\": 21, \"me\": \"21 %\", "
        "\"suggestion\": \"Raise or call Raised\", \"gauge_x2\": 3450, \"messages\": []}\n");
    EXPECT_EQ(run.err, "");
}

TEST(CalcCommand, DefaultSeatsAndBlankStrength) {
    const CalcRun run = RunCalc({"--cells", "AS,,,,,,"});
    EXPECT_EQ(ExitCode(run), 0);
    EXPECT_NE(run.out.find("\"seats\": \"MHHHHHHHHH\""), std::string::npos);
    EXPECT_NE(run.out.find("\"stage\": 0, \"strength\": null, \"me\": \"\""), std::string::npos);
    EXPECT_NE(run.out.find("\"gauge_x2\": 900"), std::string::npos);
}

TEST(CalcCommand, ExplainAddsTheTraceAfterTheMessages) {
    const CalcRun run = RunCalc({"--cells", "7H,2C,,,,,", "--explain"});
    EXPECT_EQ(ExitCode(run), 0);
    const auto messages = run.out.find("\"messages\": []");
    const auto trace = run.out.find(", \"trace\": [");
    ASSERT_NE(messages, std::string::npos);
    ASSERT_NE(trace, std::string::npos);
    EXPECT_LT(messages, trace);
    EXPECT_NE(run.out.find("4.8"), std::string::npos) << run.out;
}

TEST(CalcCommand, PrettyShowsThePanel) {
    const CalcRun run = RunCalc({"--cells", "AS,AH,,,,,", "--pretty"});
    EXPECT_EQ(ExitCode(run), 0);
    for (const char* row : {"Pair", "Two Pair", "Three Of A Kind", "Straight", "Flush",
                            "Full House", "Four Of A Kind", "Straight Flush", "31 %",
                            "Raise or Re-Raise", "[##############################]"}) {
        EXPECT_NE(run.out.find(row), std::string::npos) << row;
    }
}

TEST(CalcCommand, BadInputGoesToStderrWithStatusTwo) {
    const std::vector<std::vector<std::string>> cases = {
        {"--cells", "AS,KS,,,,"},                            // six cells
        {"--cells", "AS,KS,,,,,,"},                          // eight cells
        {"--cells", "AS,1S,,,,,"},                           // no such rank
        {"--cells", "AS,ks,,,,,"},                           // lower case
        {"--cells", "AS,KX,,,,,"},                           // no such suit
        {"--cells", "AS,KS,,,,,", "--seats", "MHHHHHHHH"},   // nine seats
        {"--cells", "AS,KS,,,,,", "--seats", "HHHHHHHHHH"},  // no M
        {"--cells", "AS,KS,,,,,", "--seats", "MMHHHHHHHH"},  // two M
        {"--cells", "AS,KS,,,,,", "--seats", "MHHHHXHHHH"},  // bad letter
        {"--cells"},                                         // missing value
        {"--frobnicate"},
        {},
    };
    for (const auto& args : cases) {
        const CalcRun run = RunCalc(args);
        EXPECT_EQ(ExitCode(run), 2) << (args.empty() ? "" : args.back());
        EXPECT_EQ(run.out, "");
        EXPECT_NE(run.err.find("felthawk-calc: "), std::string::npos);
    }
}

TEST(CalcCommand, BatchAnswersEveryLineAndGoesOnAfterErrors) {
    const CalcRun run = RunCalc({"--batch"},
                                "AS,KS,,,,, MHHHHHHHHH\n"
                                "AS,KS,,,, MHHHHHHHHH\n"
                                "\n"
                                "  7H,2C,,,,,   MFEHHHHHHH  \n"
                                "AS,KS,,,,, MHHHHHHHHX\n"
                                "AS,AH,,,,,");  // no newline at the end, default seats
    EXPECT_EQ(ExitCode(run), 0);
    std::vector<std::string> lines;
    std::string::size_type start = 0, end;
    while ((end = run.out.find('\n', start)) != std::string::npos) {
        lines.push_back(run.out.substr(start, end - start));
        start = end + 1;
    }
    ASSERT_EQ(lines.size(), 6u) << run.out;
    EXPECT_NE(lines[0].find("\"strength\": 21"), std::string::npos);
    EXPECT_EQ(lines[1].rfind("{\"error\": \"cells: expected 7", 0), 0u) << lines[1];
    EXPECT_EQ(lines[2].rfind("{\"error\": ", 0), 0u);
    EXPECT_NE(lines[3].find("\"seats\": \"MFEHHHHHHH\""), std::string::npos);
    EXPECT_NE(lines[3].find("\"strength\": 5"), std::string::npos);
    EXPECT_EQ(lines[4].rfind("{\"error\": \"seats: ", 0), 0u) << lines[4];
    EXPECT_NE(lines[5].find("\"strength\": 31"), std::string::npos);
}

TEST(CalcCommand, BatchStreamsEachAnswerBeforeMoreInputComes) {
    Process process({"--batch"});
    process.Write("AS,KS,,,,, MHHHHHHHHH\n");
    EXPECT_NE(process.ReadLine().find("\"strength\": 21"), std::string::npos);
    process.Write("7H,2C,,,,, MHHHHHHHHH\n");
    EXPECT_NE(process.ReadLine().find("\"strength\": 5"), std::string::npos);
    const CalcRun rest = process.Finish();
    EXPECT_EQ(ExitCode(rest), 0);
    EXPECT_EQ(rest.out, "");
}

}  // namespace
