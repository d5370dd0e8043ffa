// The tool's own process among others: rewrites at the same time, signals, and what is left by one
// that was killed.

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "support/platform/FolderLock.h"
#include "tests/FileFaults.h"
#include "tests/ToolRunner.h"

#ifdef __linux__
#include <csignal>

#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace {

using namespace kiv::test;
using namespace std::chrono_literals;
namespace fs = std::filesystem;
using kiv::platform::FolderLock;

std::string textOf(int id) {
    return parameterText({.values = {{kiv::Block::serialNumber, std::to_string(id)}}});
}

std::string rewritten(const std::string& text) {
    Rewrite rewrite(text);
    rewrite.run();
    return rewrite.file().value_or("");
}

// Neither shell takes it amiss when the first word is not in quotes.
int run(const std::string& arguments) {
    static const std::string path = fs::absolute(KIV_TOOL).make_preferred().string();
    return std::system(("cd . && \"" + path + "\" " + arguments).c_str());
}

TEST(ToolProcess, RewritesInAFolderWaitForEachOther) {
    const ParameterFolder folder;
    const std::vector<int> ids{5, 6, 7, 7};
    const auto file = [&](int id) { return folder.path() + "/Tg" + std::to_string(id) + ".prm"; };
    for (const int id : ids)
        std::ofstream(file(id), std::ios::binary) << textOf(id);
    FolderLock lock;
    ASSERT_EQ(lock.take(folder.path().c_str(), false), FolderLock::Result::taken);
    std::atomic<int> good = 0;
    std::vector<std::thread> threads;
    threads.reserve(std::size(ids));
    for (const int id : ids)
        threads.emplace_back([&, out = file(id) + std::to_string(threads.size()), id] {
            good += run("rewrite \"" + file(id) + "\" > \"" + out + '"') == 0;
        });
    const std::string err = folder.path() + "/err";
    EXPECT_NE(run("check \"" + file(8) + "\" 2> \"" + err + '"'), 0);
    EXPECT_NE(contentOf(err).value_or("").find("Is being rewritten"), std::string::npos);
    std::this_thread::sleep_for(500ms);
    EXPECT_EQ(contentOf(folder.path() + "/$tmp.prm"), std::nullopt);
    for (const int id : ids)
        EXPECT_EQ(contentOf(file(id)), textOf(id));
    lock.release();
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(good, 4);
    for (const int id : ids)
        EXPECT_TRUE(contentOf(file(id)) == rewritten(textOf(id))) << id;
    EXPECT_EQ(contentOf(folder.path() + "/$tmp.prm"), std::nullopt);
}

// The shell has opened the streams, so that no name tells that they lead to the table.
TEST(ToolProcess, NeverReadsItsOwnOutput) {
    const ParameterFolder folder;
    std::ofstream(folder.file()) << textOf(5);
    const std::string table = folder.path() + "/readings.csv", sensor = '"' + folder.file() + "\" ";
    const std::string text = header + "0," + good, name = '"' + table + '"';
    std::ofstream(table, std::ios::binary) << text;
    EXPECT_NE(run("report " + sensor + "- < " + name + " -o " + name), 0);
    EXPECT_NE(run("report " + sensor + name + " >> " + name), 0);
    EXPECT_EQ(contentOf(table), text);
}

#ifdef __linux__

// A rewrite on a terminal of its own, where there is one to be had.
class RewritingProcess {
public:
    explicit RewritingProcess(const std::string& file) {
        child = forkpty(&terminal, nullptr, nullptr, nullptr);
        if (child < 0)
            child = fork();
        if (child == 0) {
            std::signal(SIGHUP, SIG_DFL); // which nohup would hand on ignored
            execl(KIV_TOOL, "kiv", "rewrite", file.c_str(), nullptr);
            _exit(1);
        }
    }
    ~RewritingProcess() { close(terminal); }

    bool onTerminal() const { return terminal >= 0; }
    std::string line() const { // what it shows first
        std::string text;
        for (char c; !text.ends_with('\n') && read(terminal, &c, 1) == 1;)
            text += c;
        return text;
    }
    int end(int signal) const { // a status
        int status = -1;
        if (child < 0)
            return status;
        kill(child, signal);
        waitpid(child, &status, 0);
        return status;
    }

private:
    int terminal = -1;
    pid_t child;
};

TEST(ToolProcess, TellsATerminalThatItWaitsAndIsInterrupted) {
    const ParameterFolder folder;
    std::ofstream(folder.file()) << textOf(5);
    FolderLock lock;
    ASSERT_EQ(lock.take(folder.path().c_str(), false), FolderLock::Result::taken);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const RewritingProcess process(folder.file());
        if (!process.onTerminal()) {
            process.end(SIGTERM);
            GTEST_SKIP() << "no terminal";
        }
        EXPECT_EQ(process.line(),
                  "kiv: waiting for the end of another rewrite in " + folder.path() + "/.\r\n");
        const int status = process.end(signal);
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 130) << status;
        EXPECT_EQ(contentOf(folder.file()), textOf(5));
    }
}

// Each comes while the values are in the copy alone.
TEST(ToolProcess, EndsARewriteThatIsToldToEnd) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGKILL}) {
        SCOPED_TRACE(signal);
        const ParameterFolder folder;
        const std::string file = folder.file(), copy = folder.path() + "/$tmp.prm";
        std::ofstream(file) << textOf(5);
        const RewritingProcess process(file);
        for (int i = 0; i < 10000 && fs::exists(file); ++i)
            std::this_thread::sleep_for(1ms);
        const int status = process.end(signal);
        EXPECT_EQ(status, signal == SIGKILL ? SIGKILL : 0);
        if (signal == SIGKILL) {
            const std::string readings = KIV_EXAMPLES "/readings.csv";
            for (const std::vector<std::string>& arguments :
                 {std::vector<std::string>{"check", file},
                  {"info", file},
                  {"rewrite", file},
                  {"run", file, readings},
                  {"report", file, readings},
                  {"simulate", file}}) {
                const ToolResult result = tool(arguments);
                EXPECT_EQ(result.code, 2);
                EXPECT_NE(result.err.find("in " + copy + ", where"), std::string::npos)
                    << result.err;
            }
            fs::resize_file(copy, fs::file_size(copy) - 1); // and so no longer whole
            EXPECT_NE(tool({"check", file}).err.find("No such file\n"), std::string::npos);
        } else {
            EXPECT_EQ(contentOf(file), rewritten(textOf(5)));
            EXPECT_FALSE(fs::exists(copy));
        }
    }
}

#endif

} // namespace
