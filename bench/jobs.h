// What the files of jobs share.
#pragma once

#include "bench.h"

namespace bench {

constexpr int smallTexture = 256;
constexpr int smallPrimitives = 64; // drawing positions of small primitives, in turn
// Of cold rows: one that no second-level cache holds, and as many positions as make a turn long enough to be timed.
constexpr int coldTexture = 2048, coldPrimitives = 1024;

ninefold::Axes axesOf(int shape, int rectOpt, int filter, Blend blend);

// `count` rectangles of that size at random places of the frame (one that is as large lies at 0, 0), from random places of a
// texture that are multiples of `grid`, `scale` texels a pixel.
std::vector<Primitive> rectangles(int count, int width, int height, int textureSize, double scale, int grid = 1);

// Work and size of a rectangle of size by size pixels: one over the whole frame, else small ones in turn, per call.
Job rectangleJob(const std::string &name, Kind kind, const ninefold::Axes &axes, Content content, int size, double scale = 1);

void addSpriteJobs(std::vector<Job> &jobs); // unit scale and stretched rectangles
void addShapeJobs(std::vector<Job> &jobs); // quads, triangles, lines, colours
void addOwnJobs(std::vector<Job> &jobs); // what no peer has, against yardsticks
void addGlyphJobs(std::vector<Job> &jobs);
void addTwinJobs(std::vector<Job> &jobs);
void addCaptureJob(const std::string &path, std::vector<Job> &jobs); // ends the program where there is no such capture

} // namespace bench
