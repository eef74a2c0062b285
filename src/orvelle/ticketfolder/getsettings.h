/// The settings as a run loads them: with the person at the program, and a ticket folder to work in.
#pragma once

/// Loads `objSettings` and makes sure of a ticket folder, whose reference stays in the registry; ends the process when
/// there is no database or no folder.
void subGetSettings();
