// main.cpp: the orvex command line.
#include <CLI/CLI.hpp>

int main(int argc, char** argv) {
    CLI::App app{"Orvex Sentry command line"};
    CLI11_PARSE(app, argc, argv);
    return 0;
}
