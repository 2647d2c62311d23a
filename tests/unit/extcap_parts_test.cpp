// The small parts of the analyser's plug-in: filters, credentials, options.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "extcap/credentials.h"
#include "extcap/filter.h"
#include "extcap/options.h"
#include "extcap/sentences.h"
#include "support/temp_directory.h"

namespace ifwatch::extcap {
namespace {

using test::temp_directory;
using testing::HasSubstr;
using testing::StartsWith;

std::string filter_error(const std::string& text) {
    addinfo_buffer elements;
    std::string error;
    const bool right = add_capture_filter(text, elements, error);
    EXPECT_EQ(right, error.empty());
    return error;
}

std::string filter_elements(const std::string& text) {
    addinfo_buffer elements;
    std::string error;
    EXPECT_TRUE(add_capture_filter(text, elements, error)) << error;
    return {elements.data.begin(), elements.data.begin() + elements.used};
}

TEST(extcap_filter, becomes_the_elements_of_the_command_line) {
    EXPECT_EQ(filter_elements(""), "");
    EXPECT_EQ(filter_elements("  "), "");
    EXPECT_EQ(filter_elements("-I ::6 -o -I ::17"),
              std::string("\xFF\xFF\xFF\x06\0\0\3I::6\0\0\0o\0\0\4I::17", 4 + 7 + 4 + 8));
    EXPECT_EQ(filter_elements("-B!10.1.1.7"), std::string("\xFF\xFF\xFF\x06\0\0\x09"
                                                          "B!10.1.1.7",
                                                          17));
    EXPECT_EQ(filter_elements("-B \\!10.1.1.7"), filter_elements("-B!10.1.1.7"));
    EXPECT_EQ(filter_elements("--src 00:11:22:33:44:55 --dst=!001122334455\t--llc"),
              std::string("\xFF\xFF\xFF\x06\0\0\x11s00:11:22:33:44:55\0\0\x0D"
                          "d!001122334455\0\0\0l",
                          4 + 21 + 17 + 4));
}

TEST(extcap_filter, accepts_what_the_help_of_the_tracer_shows) {
    for (const char* text : {"-I 1.1.1.10", "-I \\!1.1.1.10", "-I :1.1.1.10", "-I 1.1.1.10:1.1.1.20",
                             "-B 1.1.1.10:1.1.1.20", "-I \\!::50", "-I ::17::512", "-I 1.2.3.4::17::512",
                             "-B ::6:1026:23", "-B host-1.example.net:1.1.1.20:6:1026:23", "-B 3com.example.net"}) {
        EXPECT_EQ(filter_error(text), "") << text;
    }
}

TEST(extcap_filter, mistakes_are_named) {
    EXPECT_EQ(filter_error("tcp port 80"), "capture filter: unknown filter 'tcp'");
    EXPECT_EQ(filter_error("-B"), "capture filter: nothing stands behind -B");
    EXPECT_EQ(filter_error("-B !"), "capture filter: nothing stands behind -B");
    EXPECT_EQ(filter_error("--src="), "capture filter: nothing stands behind --src");
    EXPECT_EQ(filter_error("-I ::tcp"), "capture filter: -I '::tcp': the protocol cannot be 'tcp'");
    EXPECT_EQ(filter_error("-I ::256"), "capture filter: -I '::256': the protocol cannot be '256'");
    EXPECT_EQ(filter_error("-B !::6:65536"), "capture filter: -B '!::6:65536': the source port cannot be '65536'");
    EXPECT_EQ(filter_error("-B :a/b"), "capture filter: -B ':a/b': the destination cannot be 'a/b'");
    EXPECT_EQ(filter_error("-B 999.1.2.3"), "capture filter: -B '999.1.2.3': the source cannot be '999.1.2.3'");
    EXPECT_EQ(filter_error("-B :10.1.1"), "capture filter: -B ':10.1.1': the destination cannot be '10.1.1'");
    EXPECT_EQ(filter_error("-I -I ::6"), "capture filter: -I '-I': the source cannot be '-I'");
    EXPECT_EQ(filter_error("-I -I"), "capture filter: -I '-I': the source cannot be '-I'");
    EXPECT_EQ(filter_error("-I :::::"), "capture filter: -I ':::::': it has more than five fields");
    EXPECT_EQ(filter_error("--dst 00:11:22:33:44"), "capture filter: --dst '00:11:22:33:44': it is no MAC address");
    EXPECT_EQ(filter_error("--src 00:11:22:33:44:5G"),
              "capture filter: --src '00:11:22:33:44:5G': it is no MAC address");
    EXPECT_EQ(filter_error("--llc=1"), "capture filter: --llc takes no '1'");
    EXPECT_EQ(filter_error("--llcx"), "capture filter: unknown filter '--llcx'");
    EXPECT_EQ(filter_error("-x ::6"), "capture filter: unknown filter '-x'");
}

TEST(extcap_filter, a_joiner_stands_between_two_filters) {
    for (const char* text : {"-o", "-o -I ::6", "-I ::6 -o", "-I ::6 -o -o -I ::17"}) {
        EXPECT_EQ(filter_error(text), "capture filter: -o stands between two filters") << text;
    }
}

TEST(extcap_filter, is_no_longer_than_the_router_takes) {
    std::string text;
    for (int i = 0; i < 50; ++i) {
        text += " -B 10.0.0.1";
    }
    EXPECT_EQ(filter_error(text), "");
    for (int i = 0; i < 50; ++i) {
        text += " -B 10.0.0.1";
    }
    EXPECT_EQ(filter_error(text), "capture filter: it is longer than the router takes");
}

class extcap_credentials : public testing::Test {
protected:
    temp_directory directory;
    secret password;
    std::string error;

    std::string write(const std::string& text, mode_t mode = 0600) {
        const std::string path = directory.write("routers", text);
        EXPECT_EQ(chmod(path.c_str(), mode), 0);
        return path;
    }
    std::string password_of(const std::string& router, const std::string& text) {
        password.wipe();
        EXPECT_TRUE(read_credentials(write(text), router, password, error)) << error;
        return password.text() != nullptr ? password.text() : "(none)";
    }
};

TEST_F(extcap_credentials, are_those_of_the_router) {
    const std::string text = "# routers\n\n one  first secret \r\ntwo\tsecond\n* any\none again";
    EXPECT_EQ(password_of("one", text), "first secret ");
    EXPECT_EQ(password_of("two", text), "second");
    EXPECT_EQ(password_of("three", text), "any");
    EXPECT_EQ(password_of("three", "one 1\nthre 2\nthreee 3"), "(none)");
    EXPECT_EQ(password_of("one", "one x"), "x");
    EXPECT_EQ(password_of("one", ""), "(none)");
}

TEST_F(extcap_credentials, mistakes_name_file_and_line) {
    const std::string path = write("one 1\n\ntwo \n");
    EXPECT_FALSE(read_credentials(path, "one", password, error));
    EXPECT_EQ(error, path + ":3: no password behind the router's name");
}

TEST_F(extcap_credentials, are_their_owners_alone) {
    const std::string path = write("one 1\n", 0640);
    EXPECT_FALSE(read_credentials(path, "one", password, error));
    EXPECT_EQ(error, "credentials file " + path + ": others can reach it; chmod 600 makes it yours alone");
    EXPECT_EQ(password.text(), nullptr);
}

TEST_F(extcap_credentials, come_from_a_file_that_can_be_read) {
    const std::string missing = directory.file("missing");
    EXPECT_FALSE(read_credentials(missing, "one", password, error));
    EXPECT_EQ(error, "credentials file " + missing + ": No such file or directory");
    EXPECT_FALSE(read_credentials(directory.path(), "one", password, error));
    EXPECT_EQ(error, "credentials file " + directory.path() + ": it is no file");
    const std::string large = write(std::string(16385, '#'));
    EXPECT_FALSE(read_credentials(large, "one", password, error));
    EXPECT_EQ(error, "credentials file " + large + ": it is longer than 16384 octets");
}

TEST_F(extcap_credentials, the_environment_comes_behind_the_file_and_is_wiped) {
    ASSERT_EQ(setenv("TRACE_PWD", "of the environment", 1), 0);
    EXPECT_TRUE(find_password(write("one 1\n"), "one", password, error));
    EXPECT_STREQ(password.text(), "1");
    password.wipe();
    EXPECT_TRUE(find_password(write("one 1\n"), "two", password, error));
    EXPECT_STREQ(password.text(), "of the environment");
    EXPECT_STREQ(std::getenv("TRACE_PWD"), "");
    password.wipe();
    ASSERT_EQ(unsetenv("TRACE_PWD"), 0);
    EXPECT_FALSE(find_password("", "two", password, error));
    EXPECT_THAT(error, StartsWith("no password for two: set TRACE_PWD"));
}

struct parsed {
    plugin_options options;
    std::string error;
    bool right = false;

    explicit parsed(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "ifwatch-extcap");
        std::vector<char*> pointers;
        for (std::string& argument : arguments) {
            pointers.push_back(argument.data());
        }
        pointers.push_back(nullptr);
        right = parse_options(static_cast<int>(arguments.size()), pointers.data(), options, error);
    }
};

TEST(extcap_options, of_a_capture) {
    const parsed call({"--capture",  "--extcap-interface",
                       "ifwatch",    "--extcap-capture-filter",
                       "-I ::6",     "--fifo",
                       "/tmp/f",     "--host",
                       "router",     "--port",
                       "7001",       "--interface",
                       "2100",       "--bchannel",
                       "lapb",       "--credentials",
                       "/c",         "--capture-length",
                       "64",         "--vpi",
                       "8",          "--vci",
                       "35",         "--router-time",
                       "--reconnect"});
    ASSERT_TRUE(call.right) << call.error;
    const plugin_options& got = call.options;
    EXPECT_EQ(got.what, call::CAPTURE);
    EXPECT_EQ(got.filter, "-I ::6");
    EXPECT_EQ(got.fifo, "/tmp/f");
    EXPECT_EQ(got.host, "router");
    EXPECT_EQ(got.port, 7001);
    EXPECT_EQ(got.interfaces.text(), "2100");
    EXPECT_STREQ(got.bchannels.of(2100).word, "lapb");
    EXPECT_EQ(got.credentials, "/c");
    EXPECT_EQ(got.capture_length, 64);
    EXPECT_EQ(got.atm.vpi, 8);
    EXPECT_EQ(got.atm.vci, 35);
    EXPECT_TRUE(got.router_time);
    EXPECT_TRUE(got.reconnect);
}

TEST(extcap_options, left_empty_count_as_not_given) {
    const parsed call({"--extcap-config", "--extcap-interface", "ifwatch", "--host", "", "--port", "", "--interface",
                       "", "--bchannel", "", "--vpi", ""});
    ASSERT_TRUE(call.right) << call.error;
    EXPECT_EQ(call.options.port, 7000);
    EXPECT_TRUE(call.options.interfaces.empty());
    EXPECT_STREQ(call.options.bchannels.of(2101).word, "ppp");
    EXPECT_FALSE(call.options.reconnect);
    EXPECT_EQ(call.options.atm.vpi, -1);
}

TEST(extcap_options, decide_what_is_done) {
    EXPECT_EQ(parsed({"--extcap-interfaces", "--extcap-version=4.0"}).options.what, call::LIST_INTERFACES);
    EXPECT_EQ(parsed({"--extcap-version"}).options.what, call::VERSION);
    EXPECT_EQ(parsed({"--extcap-dlts", "--extcap-interface", "ifwatch"}).options.what, call::LIST_LINK_TYPES);
    EXPECT_EQ(parsed({"--extcap-config", "--extcap-interface", "ifwatch"}).options.what, call::LIST_OPTIONS);
    EXPECT_EQ(parsed({"--extcap-capture-filter", "", "--extcap-interface", "ifwatch"}).options.what,
              call::CHECK_FILTER);
    EXPECT_EQ(parsed({"--extcap-cleanup-postkill"}).options.what, call::CLEAN_UP);
    EXPECT_EQ(parsed({"--capture", "-h"}).options.what, call::HELP);
    const parsed reload({"--extcap-config", "--extcap-interface", "ifwatch", "--extcap-reload-option", "--interface"});
    EXPECT_EQ(reload.options.what, call::RELOAD_OPTION);
    EXPECT_EQ(reload.options.reload_option, "interface");
}

TEST(extcap_options, mistakes_are_named_and_the_fifo_is_known_all_the_same) {
    const parsed call({"--capture", "--extcap-interface", "ifwatch", "--port", "0", "--unheard", "--fifo", "/tmp/f"});
    EXPECT_FALSE(call.right);
    EXPECT_EQ(call.error, "--port takes a port from 1 to 65535, not '0'");
    EXPECT_EQ(call.options.fifo, "/tmp/f");
    EXPECT_EQ(call.options.what, call::CAPTURE);
    EXPECT_EQ(parsed({"--unheard"}).error, "unknown option '--unheard'");
    EXPECT_EQ(parsed({"--unheard=1", "--extcap-interfaces"}).error, "unknown option '--unheard=1'");
    EXPECT_EQ(parsed({"-zz", "--extcap-interfaces"}).error, "unknown option '-zz'");
    EXPECT_EQ(parsed({"--extcap-interfaces", "-hyz"}).error, "unknown option '-yz'");
    EXPECT_EQ(parsed({"--help=3"}).error, "--help takes no argument, not '3'");
    EXPECT_EQ(parsed({"--capture=3"}).error, "--capture takes no argument, not '3'");
    EXPECT_EQ(parsed({"--fifo"}).error, "--fifo: 1 required argument (a file name) is missing");
    EXPECT_EQ(parsed({"--extcap-interfaces", "more"}).error, "not an option: 'more'");
    EXPECT_EQ(parsed({}).error, "nothing to do");
    EXPECT_EQ(parsed({"--extcap-dlts", "--extcap-interface", "eth0"}).error,
              "--extcap-interface takes the interface 'ifwatch', not 'eth0'");
    EXPECT_THAT(parsed({"--extcap-config"}).error, StartsWith("--extcap-interface is missing"));
    EXPECT_THAT(parsed({"--capture", "--extcap-interface", "ifwatch"}).error, StartsWith("--fifo is missing"));
    EXPECT_THAT(parsed({"--capture", "--extcap-interface", "ifwatch", "--fifo", "f"}).error,
                StartsWith("--interface is missing"));
}

TEST(extcap_options, take_the_interface_chosen_or_typed) {
    const auto capture = [](const std::string& chosen, const std::string& typed) {
        return parsed(
            {"--capture", "--extcap-interface", "ifwatch", "--fifo", "f", "--interface", chosen, "--index", typed});
    };
    EXPECT_EQ(capture("2100", "").options.interfaces.text(), "2100");
    EXPECT_EQ(capture("", "line:2100,1000").options.interfaces.text(), "line:2100,1000");
    EXPECT_TRUE(capture("1000", "1000").right);
    EXPECT_EQ(capture("2100", "1000").error, "the interface and the index differ: 2100 and 1000; give one of them");
    EXPECT_THAT(capture("", "").error, StartsWith("--interface is missing"));
}

TEST(extcap_options, wrong_values_are_refused) {
    for (const auto& [name, value] : std::vector<std::pair<std::string, std::string>>{{"--port", "65536"},
                                                                                      {"--port", "7000x"},
                                                                                      {"--interface", "-1"},
                                                                                      {"--index", "2147483648"},
                                                                                      {"--bchannel", "PPP"},
                                                                                      {"--bchannel", "ppp,lapb"},
                                                                                      {"--interface", "line:"},
                                                                                      {"--capture-length", "8193"},
                                                                                      {"--vpi", "256"},
                                                                                      {"--vci", "65536"},
                                                                                      {"--host", "a b"}}) {
        const parsed call({"--extcap-config", "--extcap-interface", "ifwatch", name, value});
        EXPECT_THAT(call.error, StartsWith(name + " takes ")) << value;
        EXPECT_THAT(call.error, HasSubstr("not '" + value + "'"));
    }
}

TEST(extcap_sentences, reload_lists_interfaces) {
    const std::vector<listed_interface> listed = {{1000, 6}, {100001, 131}, {5000, 77}};
    EXPECT_EQ(interface_value_sentences(listed),
              "value {arg=2}{value=1000}{display=1000 LAN}\n"
              "value {arg=2}{value=100001}{display=100001 Tunnel}\n"
              "value {arg=2}{value=5000}{display=5000 unknown}\n"
              "value {arg=2}{value=all}{display=The whole router: 3 interfaces}\n");
    EXPECT_THAT(option_sentences(), HasSubstr("arg {number=2}{call=--interface}"));
    EXPECT_THAT(option_sentences(), HasSubstr("value {arg=4}{value=ppp}{display=PPP}{default=true}\n"));
    EXPECT_THAT(option_sentences(), HasSubstr("arg {number=4}{call=--bchannel}"));
}

}  // namespace
}  // namespace ifwatch::extcap
