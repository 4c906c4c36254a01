// Items of the system database as one line of text, to be compared whole.
#ifndef TESTS_LINE_SYSTEM_SHOWN_ITEM_HPP
#define TESTS_LINE_SYSTEM_SHOWN_ITEM_HPP

#include <string>
#include <string_view>
#include <vector>

#include "simulator/database/item.hpp"

// A bag: type name and version, then "name=number", "name='text'", "name{struct}", "name[array]"; an integer: its
// number.
std::string shown_data(sysdb_item_datatype_td type, std::string_view data);

// "path: data", in the order of the items.
std::vector<std::string> shown(const std::vector<ocpsm::sysdb::Item> &items);

#endif
