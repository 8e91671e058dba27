// netspy_loader.js: a harmless stand-in for a script of the made-up remote access tool NetSpyRat.
// It does nothing.
