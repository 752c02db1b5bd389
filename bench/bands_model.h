// What bands would give on more cores than there are: a model by the bytes that a frame moves and the time that it computes.
#pragma once

struct Machine { // measured
    double near[2], far[2]; // bytes a second, by one core and by two together: of what the last-level cache holds, and of memory
    double line; // s that a line of the cache takes from one core to the other
    double lastCache; // bytes
};
Machine measureMachine();

struct Work { // of a frame in bands
    int draws = 0;
    double rows = 0; // of all draws together
    // Bytes that come from beyond a core's own caches: of pictures when they are first used and when they are used again, and of
    // the frame buffer, once.
    double first = 0, again = 0, target = 0;
    bool layers = false; // divided so that bands stay in a core's cache
};

struct Measured { // s a frame
    double plain, one, two; // at once; in bands by one thread and by two
    double recording; // s a draw
};

// Seconds on so many cores. `wide`: each further core brings as much memory bandwidth as the second one did; otherwise two cores
// have all that there is.
double modelled(const Machine &machine, const Work &work, const Measured &measured, int cores, bool wide);
