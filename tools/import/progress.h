#pragma once

/// Tells what the program does from now on. On a terminal, one that has worked for more than two seconds
/// shows it on standard error until `endProgress`.
void showPhase(const char* phase);

/// Wipes the line away, ahead of a message.
void pauseProgress();

/// Wipes the line away for good.
void endProgress();
