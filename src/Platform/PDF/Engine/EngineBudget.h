#pragma once

class SourceEngine;

/// One limit for what the drawing engine keeps for reuse in all open files together: decoded fonts and pictures,
/// recorded pages, documents that wait for their next borrower. Past it the files that were used least recently give up
/// theirs. Any thread.
namespace EngineBudget {

/// To be called before the engine goes.
void remove(SourceEngine& engine);
/// The engine has just been used, so it keeps something from now on. Not to be called with a lock held that giving up
/// caches takes.
void noteUse(SourceEngine& engine);
/// Memory is short: all files give up what they can read again.
void releaseAll();

} // namespace EngineBudget
