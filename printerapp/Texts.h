// What options and their choices are called: for the library's web pages, and for clients.
#pragma once

#include <pappl/pappl.h>

#include <string>

namespace velka::app {

/// Has the web pages show options by their texts, in the languages that the library's pages
/// and the PPDs have, and serves the English ones to clients.
/// @param names  what the server listens to, with commas between them; "*" is every address
///     of this machine. Clients are told the first that is more than "localhost".
void addTexts(pappl_system_t* system, const std::string& names);

/// Says in a printer's attributes where clients find the texts.
void tellTexts(pappl_system_t* system, ipp_t* attributes);

}  // namespace velka::app
