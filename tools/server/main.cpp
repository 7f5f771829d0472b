#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <signal.h>
#include <string>
#include <sys/resource.h>
#include <vector>

#include "server.h"

namespace {

constexpr int ExitFailure = 1;

struct Arguments {
    std::vector<std::string> roots;
    std::vector<std::uint16_t> http;
    std::vector<std::string> https;
    std::uint16_t control = 0;
    std::string certificates;
    std::string log;
    std::string portsFile;
    std::vector<std::string> faults;
};

/// "CERTIFICATE" or "CERTIFICATE=PORT".
Server::ListenerOptions SecureListener(const std::string& text) {
    const std::size_t equals = text.find('=');
    Server::ListenerOptions listener;
    listener.certificate = text.substr(0, equals);
    listener.name = listener.certificate == "good" ? "https" : "https-" + listener.certificate;
    if (equals != std::string::npos &&
        !CLI::detail::lexical_cast(text.substr(equals + 1), listener.port)) {
        throw CLI::ValidationError("--https", "\"" + text + "\" has no port behind the \"=\"");
    }
    return listener;
}

Server::Options ToOptions(const Arguments& arguments) {
    Server::Options options;
    options.roots.assign(arguments.roots.begin(), arguments.roots.end());
    options.certificates = arguments.certificates;
    options.controlPort = arguments.control;
    options.log = arguments.log;
    for (const std::uint16_t port : arguments.http)
        options.listeners.push_back({"http", port, {}});
    for (const std::string& text : arguments.https) {
        options.listeners.push_back(SecureListener(text));
    }
    if (options.listeners.empty()) options.listeners.push_back({"http", 0, {}});
    if (!arguments.https.empty() && arguments.certificates.empty()) {
        throw CLI::ValidationError("--https", "needs --certificates");
    }
    for (const std::string& text : arguments.faults) {
        std::string problem;
        auto rule = Server::ParseFaultRule(text, problem);
        if (!rule) throw CLI::ValidationError("--fault", problem);
        options.faults.push_back(*std::move(rule));
    }
    return options;
}

void AddOptions(CLI::App& app, Arguments& arguments) {
    app.add_option("ROOT", arguments.roots,
                   "Folder to serve; with several, the first one that holds a file gives it")
        ->required()
        ->check(CLI::ExistingDirectory);
    app.add_option("--http", arguments.http,
                   "Serve plain HTTP on this port; 0, also when no port is asked for at all, lets "
                   "the system pick");
    app.add_option("--https", arguments.https,
                   "CERTIFICATE[=PORT]: serve HTTPS with CERTIFICATE.pem and CERTIFICATE.key of "
                   "the certificates' folder; may be repeated");
    app.add_option("--certificates", arguments.certificates,
                   "Folder of the certificates, as made by make_certificates.sh")
        ->check(CLI::ExistingDirectory);
    app.add_option("--control", arguments.control,
                   "Port of the control address, by which rules change while the server runs");
    app.add_option("--log", arguments.log,
                   "Append a time-stamped line for each connection, request and response to this "
                   "file; \"-\" is the standard output");
    app.add_option("--ports-file", arguments.portsFile,
                   "Write the ports as JSON to this file once all of them are open");
    app.add_option("--fault", arguments.faults, "A rule by which to misbehave; may be repeated");
    // A value each: "--http 0 ROOT" must not take ROOT for a second port.
    for (const char* name : {"--http", "--https", "--fault"}) {
        app.get_option(name)->expected(1)->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    }
    app.footer(
        "Rules: PATTERN=ACTION[:VALUE][,ACTION[:VALUE]]...\n"
        "PATTERN is a path without its leading slash, where * stands for any text; one with a ? "
        "is\n"
        "compared with the query too. @http, @https, @https-CERTIFICATE and @* stand for the\n"
        "connections to a listener. The newest rule that matches decides. Sizes take K, M and G,\n"
        "places (AT) are sizes or percentages; %2C stands for a comma in a value.\n\n" +
        Server::FaultHelp() +
        "\nControl, by GET on its port: /.control/set?rule=RULE, /.control/clear[?id=N],\n"
        "/.control/list, /.control/drop (ends every open connection),\n"
        "/.control/put?path=PATH[&text=TEXT], /.control/append?path=PATH&text=TEXT[&times=N],\n"
        "/.control/log[?from=BYTE].\n\n"
        "Exit codes: 0 ended by a signal, 1 something cannot be had (a port, a certificate, a\n"
        "file), above 100 wrong arguments.");
}

/// Whoever reads the file sees all of it or none.
void WritePortsFile(const std::string& path, const std::string& text) {
    const std::string temporary = path + ".new";
    std::ofstream file(temporary);
    file << text << '\n';
    file.close();
    if (!file) throw std::runtime_error(temporary + ": cannot be written");
    std::filesystem::rename(temporary, path);
}

void RaiseDescriptorLimit() {
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0) return;
    limit.rlim_cur = limit.rlim_max;
    // With the lower limit fewer connections fit; that is no reason not to start.
    [[maybe_unused]] const int result = ::setrlimit(RLIMIT_NOFILE, &limit);
}

/// Serves until a signal ends it.
int Run(int argc, char** argv) {
    // Blocked before any thread starts, so that only the wait below takes them.
    sigset_t ending;
    ::sigemptyset(&ending);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        ::sigaddset(&ending, signal);
    ::pthread_sigmask(SIG_BLOCK, &ending, nullptr);
    ::signal(SIGPIPE, SIG_IGN);

    CLI::App app(
        "Serves a published tree and the web feeds on loopback, and misbehaves on request.",
        "tolvan-server");
    Arguments arguments;
    AddOptions(app, arguments);
    try {
        app.parse(argc, argv);
        RaiseDescriptorLimit();
        const Server::Server server(ToOptions(arguments));
        const std::string ports = server.DescribeAsJson();
        std::puts(ports.c_str());
        std::fflush(stdout);
        if (!arguments.portsFile.empty()) WritePortsFile(arguments.portsFile, ports);
        int signal = 0;
        ::sigwait(&ending, &signal);
        return 0;
    } catch (const CLI::ParseError& error) {
        return app.exit(error);
    }
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return Run(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "tolvan-server: %s\n", error.what());
        return ExitFailure;
    }
}
