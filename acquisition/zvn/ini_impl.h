#pragma once

#include <functional>
#include <string>

/// Runs through an INI file. Lines are "[section]", "name = value" and comments after ";" or "#".
/// @param take is given each line's section, name and value, and answers why it is wrong, empty where it is not;
///        what is wrong ends the run
/// @return why the file is wrong, with its name and line; empty where it is not
std::string ReadIni(const std::string& path,
                    const std::function<std::string(const std::string& section, const std::string& name,
                                                    const std::string& value)>& take);
