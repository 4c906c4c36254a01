// Makes the directory of a line system for tests.
//   make_line_system DIRECTORY [SLOT... [entries NUMBER]]
// With so many entries in its journal.
#include <algorithm>
#include <iostream>
#include <string>
#include <vector>

#include "framework/error.hpp"
#include "simulator/database/client_library.hpp"
#include "simulator/line_system/journal.hpp"
#include "simulator/line_system/operations.hpp"
#include "simulator/line_system/storage.hpp"

int main(int argc, char **argv) {
    namespace line_system = ocpsm::line_system;
    if (argc < 2) {
        std::cerr << "make_line_system DIRECTORY [SLOT... [entries NUMBER]]\n";
        return 2;
    }
    try {
        const std::vector<std::string> words(argv + 2, argv + argc);
        const auto entries = std::find(words.begin(), words.end(), "entries");
        line_system::LineSystem system;
        for (auto slot = words.begin(); slot != entries; ++slot) {
            system = line_system::fit(system, std::stoi(*slot));
        }
        const ocpsm::sysdb::Client client;
        const auto store = line_system::create(client, argv[1], system);
        const auto transaction = store->write();
        for (int left = entries == words.end() ? 0 : std::stoi(words.back()); left > 0; --left) {
            line_system::append(*transaction, {.kind = ocpsm::JournalKind::spliced, .module = "0/2-PSM-OM"});
        }
        transaction->commit();
    } catch (const std::exception &error) {
        std::cerr << "make_line_system: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
