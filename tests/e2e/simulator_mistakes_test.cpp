// The command line of the simulator: what a mistake gets.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "support/process.h"
#include "support/programs.h"
#include "support/simulator.h"
#include "support/temp_directory.h"

namespace ifwatch::test {
namespace {

constexpr char DCHANNEL[] = "channel 0\nrecord R 1000\n 00 01 7F\n";
constexpr char LAN[] = "channel 6\ninterface 2000\n";

outcome run_sim(const std::vector<std::string>& arguments) { return run({IFWATCH_SIM_PROGRAM, arguments}); }

TEST(simulator, helps) {
    const outcome helped = run_sim({"--help"});
    EXPECT_EQ(helped.status, 0);
    EXPECT_TRUE(helped.output.starts_with("ifwatch-sim: ")) << helped.output;
    EXPECT_THAT(helped.output, testing::HasSubstr("Examples:\n"));
    EXPECT_EQ(helped.errors, "");
}

TEST(simulator, names_mistakes_in_one_line) {
    const temp_directory directory;
    const std::string good = directory.write("good.case", DCHANNEL);
    const std::string other = directory.write("other.case", LAN);
    const std::string again = directory.write("again.case", LAN);
    const std::string bad = directory.write("bad.case", "channel 0\nrecord Q 1\n");
    const std::pair<std::vector<std::string>, std::string> mistakes[] = {
        {{}, "no case file given (--help tells more)"},
        {{"--nonsense", good}, "unknown option '--nonsense' (--help tells more)"},
        {{"-xv", good}, "unknown option '-xv' (--help tells more)"},
        {{"--once=1", good}, "--once takes no argument, not '1' (--help tells more)"},
        {{"--sessions", "0", good}, "--sessions takes a number of sessions above 0, not '0' (--help tells more)"},
        {{good, "--port"}, "--port: 1 required argument (a port from 0 to 65535) is missing (--help tells more)"},
        {{"--fault", "drip", "--fault", "cut=1", good},
         "--fault takes one of mute, refuse, cut=N, stall=N, drip, silence=N, swap=N, restart=N, "
         "length=record:N:LENGTH "
         "and length=element:TYPE:LENGTH, once for an interface, "
         "not 'cut=1' (--help tells more)"},
        {{"--fault", "cut=1@2101", "--fault", "drip@2102", good},
         "--fault takes one of mute, refuse, cut=N, stall=N, drip, silence=N, swap=N, restart=N, "
         "length=record:N:LENGTH "
         "and length=element:TYPE:LENGTH, once for an interface, not 'drip@2102' (--help tells more)"},
        {{"--pace", "2", "--rate", "3", good}, "--pace and --rate exclude each other (--help tells more)"},
        {{"--port", "7\n8", good}, "--port takes a port from 0 to 65535, not '7\\n8' (--help tells more)"},
        {{"--pace", "fast", good}, "--pace takes real or a factor above 0, not 'fast' (--help tells more)"},
        {{"--version", "4", good}, "--version takes 1, 2 or 3, not '4' (--help tells more)"},
        {{"--listen", "nowhere", "--port", "0", good}, "--listen takes an IPv4 address, not 'nowhere'"},
        {{bad}, bad + ":2: record takes R (received) or X (sent), not 'Q'"},
        {{directory.file("none.case")}, directory.file("none.case") + ": No such file or directory"},
        {{good, other}, good + ":1: several cases need an interface line each"},
        {{"--port-file", directory.path() + "/none/port", "--port", "0", good},
         directory.path() + "/none/port: No such file or directory"},
        {{other, again}, again + ":2: interface 2000 is already that of " + other},
    };
    for (const auto& [arguments, error] : mistakes) {
        const outcome refused = run_sim(arguments);
        EXPECT_EQ(refused.status, 2) << error;
        EXPECT_EQ(refused.errors, "ifwatch-sim: " + error + "\n");
        EXPECT_EQ(refused.output, "");
    }
}

TEST(simulator, says_when_the_port_is_taken) {
    const temp_directory directory;
    const simulator sim({DCHANNEL});
    const std::string port = std::to_string(sim.port());
    const outcome refused = run_sim({"--port", port, directory.write("a.case", DCHANNEL)});
    EXPECT_EQ(refused.status, 2);
    EXPECT_EQ(refused.errors, "ifwatch-sim: 127.0.0.1:" + port + ": Address already in use\n");
}

}  // namespace
}  // namespace ifwatch::test
