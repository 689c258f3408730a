// Fills into a text what vxk's groups and vxk-check's verdicts say of the commands: README, manual,
// completion of the shells, the table of verdicts. A line with "made of the tables: NAME" says where and
// which; table rows that follow it are what stood there before.
//
// usage: vxk_commands < text > text
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <functional>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "groups.h"
#include "verdicts.h"

namespace {

using check::Row;
using Words = std::vector<std::string>;

bool is_number(const std::string& word) {
    return !word.empty() && isdigit(static_cast<unsigned char>(word[0])) != 0;
}

std::string replaced(std::string text, const std::string& what, const std::string& by) {
    for (size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += by.size())
        text.replace(at, what.size(), by);
    return text;
}

/// The command lines of a row as people read them, in words: one, or one for each number between bars.
std::vector<Words> command_lines(const Row& row) {
    std::vector<Words> lines(1);
    std::istringstream words(row.words);
    for (std::string word; words >> word && word != "...";) {
        std::transform(word.begin(), word.end(), word.begin(), [](unsigned char c) { return tolower(c); });
        std::vector<Words> longer;
        std::istringstream choices(word);
        for (std::string choice; getline(choices, choice, '|');)
            for (Words line : lines) {
                line.push_back(choice);
                longer.push_back(std::move(line));
            }
        lines = std::move(longer);
    }
    return lines;
}

/// A word that may stand at a place of the command line.
struct Choice {
    std::string word;
    std::string meaning;
};

/// The values of a word, as a row tells them.
std::vector<Choice> values_of(const Row& row, const std::string& word) {
    const std::string text = row.more;
    const std::string name = "`" + word + "` ";
    const size_t start = text.find(name);
    std::vector<Choice> values;
    if (start != std::string::npos) {
        std::istringstream list(text.substr(
            start + name.size(), text.find_first_of(";(`", start + name.size()) - start - name.size()));
        for (std::string item; getline(list, item, ',');) {
            std::istringstream parts(item);
            std::string value;
            std::string meaning;
            parts >> value;
            getline(parts >> std::ws, meaning);
            int last = 0;
            if (is_number(value) && sscanf(meaning.c_str(), "to %d", &last) == 1) {
                // Of a long range nobody wants a list.
                for (int each = std::stoi(value); each <= last && last < 10; ++each)
                    values.push_back({std::to_string(each), ""});
            } else if (is_number(value)) {
                values.push_back({value, meaning.substr(0, meaning.find_last_not_of(' ') + 1)});
            }
        }
    }
    static const std::map<std::string, std::vector<Choice>> kAnywhere{
        {"sub", {{"0", ""}, {"1", ""}}}, {"path", {{"/nv/item_files/", ""}}}, {"text", {{"AT", ""}}}};
    const auto known = kAnywhere.find(word);
    return values.empty() && known != kAnywhere.end() ? known->second : values;
}

/// What a sub-option does: its row says it, or the help where it shares a row or has several.
std::string title(const Group& group, const Command& command) {
    const Words wanted{std::to_string(group.number), std::to_string(command.sub_option)};
    size_t found = 0;
    const char* does = "";
    for (const Row& row : check::verdict_table()) {
        const std::vector<Words> lines = command_lines(row);
        for (const Words& line : lines) {
            if (std::equal(wanted.begin(), wanted.end(), line.begin())) {
                found += lines.size();
                does = row.does;
            }
        }
    }
    const char* const comment = strstr(command.help, "/* ");
    if (found == 1 || comment == nullptr)
        return does;
    const std::string text(comment + 3, strcspn(comment + 3, ",:(*\n"));
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

/// By place, option and sub-option, "3.5.10" or "2.5.*", as a pattern of the shells.
using Choices = std::map<std::string, std::vector<Choice>>;

void add(Choices& choices, size_t place, const Words& line, const Choice& choice) {
    const std::string sub = place > 2 && is_number(line[1]) ? line[1] : "*";
    std::vector<Choice>& there = choices[std::to_string(place) + "." + line[0] + "." + sub];
    if (std::none_of(there.begin(), there.end(),
                     [&](const Choice& other) { return other.word == choice.word; }))
        there.push_back(choice);
}

Choices all_choices() {
    Choices choices;
    for (const Row& row : check::verdict_table()) {
        for (const Words& line : command_lines(row)) {
            const Group* const group = find_group(std::stoi(line[0]));
            for (size_t i = 0; group != nullptr && i < group->count; ++i) {
                const Command& command = group->commands[i];
                if (command.sub_option != kNoSubOption)
                    add(choices, 2, line, {std::to_string(command.sub_option), title(*group, command)});
            }
            for (size_t place = 2; place <= line.size(); ++place) {
                const std::string& word = line[place - 1];
                if (!is_number(word)) {
                    for (const Choice& value : values_of(row, word))
                        add(choices, place, line, value);
                } else if (place > 2) {
                    add(choices, place, line, {word, row.does});
                }
            }
        }
    }
    return choices;
}

/// The arms of a shell's case, which set `variable` to the choices as `written` writes each.
Words arms(const char* variable, const std::function<std::string(const Choice&)>& written) {
    Words lines;
    for (const auto& [key, list] : all_choices()) {
        std::string words;
        for (const Choice& choice : list)
            words.append(words.empty() ? "" : " ").append(written(choice));
        lines.emplace_back(key).append(") ").append(variable).append("=(").append(words).append(") ;;");
    }
    return lines;
}

Words bash_choices() {
    return arms("words", [](const Choice& choice) { return choice.word; });
}

Words zsh_choices() {
    return arms("choices", [](const Choice& choice) {
        const std::string meaning = choice.meaning.empty() ? "" : ":" + choice.meaning;
        return "'" + choice.word + replaced(meaning, "'", "'\\''") + "'";
    });
}

Words manual_entries() {
    Words lines;
    for (const Row& row : check::verdict_table()) {
        const char* macro = ".TP";
        for (const Words& line : command_lines(row)) {
            std::string text;
            for (const std::string& word : line)
                text += (is_number(word) ? "\\fB" : "\\fI") + word + "\\fR ";
            lines.emplace_back(macro);
            lines.push_back(text.substr(0, text.size() - 1));
            macro = ".TQ";
        }
        bool open = false;
        std::string text;
        for (const char c : std::string(row.does) + row.more)
            text += c == '`' ? (open = !open, open ? "\\fI" : "\\fR") : std::string(1, c);
        lines.push_back(text);
    }
    return lines;
}

Words readme_rows() {
    Words lines{"| command | what it does |", "|---|---|"};
    for (const Row& row : check::verdict_table()) {
        std::string commands;
        for (const Words& line : command_lines(row)) {
            commands += commands.empty() ? "`" : ", `";
            for (const std::string& word : line)
                commands += word + (&word == &line.back() ? "`" : " ");
        }
        lines.push_back("| " + commands + " | " + row.does + row.more + " |");
    }
    return lines;
}

Words verdict_rows() {
    Words lines;
    std::istringstream table(check::verdict_table_markdown());
    for (std::string line; getline(table, line);)
        lines.push_back(line);
    return lines;
}

const std::map<std::string, std::function<Words()>> kTables{
    {"bash", bash_choices},     {"commands", readme_rows}, {"manual", manual_entries},
    {"verdicts", verdict_rows}, {"zsh", zsh_choices},
};

}  // namespace

int main() {
    const std::string marker = "made of the tables: ";
    bool in_old_table = false;
    for (std::string line; getline(std::cin, line);) {
        in_old_table = in_old_table && line[0] == '|';
        if (in_old_table)
            continue;
        std::cout << line << '\n';
        const size_t at = line.find(marker);
        if (at == std::string::npos)
            continue;
        const std::string indent(line.find_first_not_of(' '), ' ');
        std::string name;
        std::istringstream(line.substr(at + marker.size())) >> name;
        for (const std::string& row : kTables.at(name)())
            std::cout << indent << row << '\n';
        in_old_table = true;
    }
}
