// Everything a person may type: a line of words parted by single blanks, the option first, and behind the
// line break what the modem answers.
#include <cstdlib>
#include <memory>

#include "groups.h"
#include "modem.h"

namespace {

// Each word a block of its own size, as a read past its end is to be seen.
class CommandLine {
public:
    explicit CommandLine(const std::string& line) {
        add("vxk");
        for (size_t start = 0, end = 0; start <= line.size(); start = end + 1) {
            end = std::min(line.find(' ', start), line.size());
            add(line.substr(start, end - start));
        }
        argv_.push_back(nullptr);
    }

    int argc() const { return static_cast<int>(words_.size()); }
    char** argv() { return argv_.data(); }

private:
    void add(const std::string& word) {
        auto& block = words_.emplace_back(word.c_str(),
                                          word.c_str() + std::char_traits<char>::length(word.c_str()) + 1);
        argv_.push_back(block.data());
    }

    std::vector<std::vector<char>> words_;
    std::vector<char*> argv_;
};

void run(CommandLine& line) {
    const Group* const group = find_group(atoi(line.argv()[1]));
    if (group != nullptr)
        group->run(line.argc(), line.argv());
    else
        show_help(0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    CommandLine line(input.line());
    run_tool(input, [&] { run(line); });
    return 0;
}
