// What no peer has, against yardsticks: the least it can cost, or another kernel of ours.
#include "jobs.h"
#include "scene.h"
#include "yardsticks.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>
#include <memory>

#include <sys/wait.h>
#include <unistd.h>

namespace bench {

namespace {

using ninefold::Axes;

volatile uint32_t sink; // what yardsticks have read
DrawFunc volatile found; // what look-ups have given

// The shapes over the whole frame that gates and rules are tried on.
struct Shape {
    const char *name;
    Kind kind;
    Axes axes;
    Content content;
    double scale;
};

std::vector<Shape> shapes()
{
    Axes perspective = axesOf(NINEFOLD_SHAPE_TRIANGLE, NINEFOLD_RECT_NONE, NINEFOLD_FILTER_BILINEAR, copy);
    perspective.pers = NINEFOLD_PERS_ON;
    return {{"unit.copy", Kind::blit, axesOf(NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_UNIT, NINEFOLD_FILTER_POINT, copy),
             Content::opaque, 1},
            {"flat", Kind::fill, axesOf(NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_NONE, NINEFOLD_FILTER_FLAT, copy),
             Content::opaque, 1},
            {"bilinear.copy", Kind::stretch,
             axesOf(NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_STRETCH, NINEFOLD_FILTER_BILINEAR, copy), Content::opaque, 2 / 3.0},
            {"rotated.point.copy", Kind::corners,
             axesOf(NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_CORNERS, NINEFOLD_FILTER_POINT, copy), Content::opaque, 1},
            {"perspective.bilinear.copy", Kind::perspective, perspective, Content::opaque, 1}};
}

Job shapeJob(const std::string &prefix, const Shape &shape)
{
    Job job = rectangleJob(prefix + shape.name, shape.kind, shape.axes, shape.content, frameSize, shape.scale);
    Primitive &p = job.work.primitives[0];
    if (shape.kind == Kind::corners || shape.kind == Kind::perspective) {
        // Turned a little, depths from near to far.
        p.uv[0] = {100 << 16, 20 << 16}, p.uv[1] = {900 << 16, 120 << 16}, p.uv[2] = {20 << 16, 800 << 16};
        p.uv[3] = {820 << 16, 900 << 16};
        p.vertex[0].z = 10000, p.vertex[2].z = 12000, p.vertex[3].z = 15000, p.vertex[1].z = 20000;
    }
    job.ownOnly = true;
    return job;
}

// The same work by another kernel, for yardsticks.
std::shared_ptr<Job> besides(const Job &job, const Axes &axes)
{
    auto other = std::make_shared<Job>();
    other->work = job.work;
    other->axes = axes;
    return other;
}

std::vector<Span> frameSpans()
{
    std::vector<Span> spans;
    for (int y = 0; y < frameSize; ++y)
        spans.push_back({y, 0, frameSize});
    return spans;
}

// The rule texture of one value over the whole frame, at one texel a pixel.
std::function<void()> ruleSetup(int value)
{
    return [value] {
        rs.tex2 = ruleTexture(value);
        rs.uv2[0] = {0, 0}, rs.uv2[1] = {frameSize << 16, frameSize << 16};
        rs.ruleThreshold = 100, rs.ruleWidth = 50, rs.ruleCurve = NINEFOLD_CURVE_LINEAR;
    };
}

// Three bounds, a pixel each:
//   - Outside nothing but the rule's 4 bytes is read. The yardstick reads them too; a tenth is for the rows.
//   - Inside the kernel without a rule is drawn as well, 12 bytes (texel, frame buffer fetched and written) where 4 are read
//     before. The yardstick does the one after the other.
//   - At the edge the frame buffer is read and mixed: 16 bytes, and of instructions for eight pixels about 30 (rule value and its
//     bounds 6, weight 6, mix of two channel pairs 14, choice and masked store 4) over those of the kernel without a rule, which
//     has about 20 with what its memory makes it wait, 10 for a fill, 60 stretched by four texels, 30 turned and 100 in
//     perspective by four.
void addRules(std::vector<Job> &jobs)
{
    constexpr double edgeInstructions = 30, ownInstructions[] = {20, 10, 60, 30, 100};
    struct Place {
        const char *name;
        int value;
    };
    for (const Place &place : {Place{"outside", 50}, Place{"edge", 125}, Place{"inside", 200}})
        for (size_t at = 0; at < shapes().size(); ++at) {
            const Shape shape = shapes()[at];
            Job job = shapeJob(std::string("rule.") + place.name + ".", shape);
            job.axes.rule = NINEFOLD_RULE_ON;
            job.setup = ruleSetup(place.value);
            job.refused = place.value == 50;
            const bool edge = place.value == 125;
            job.goal = edge ? 1 + edgeInstructions / ownInstructions[at] : 1.1;
            job.more = [plain = besides(job, shape.axes), value = place.value, edge](Contenders &contenders) {
                const bool drawn = value > 100;
                const Contender kernel = kernelAs("no rule", Role::yardstick, *plain, plain->axes, {});
                if (edge) {
                    contenders.push_back(kernel);
                    return;
                }
                contenders.push_back({drawn ? "no rule + read" : "read rule", Role::yardstick, "", kernel.prepare,
                                      [=, spans = frameSpans()](long calls) {
                                          for (long i = 0; i < calls; ++i) {
                                              sink = readRuleValues(ruleTexture(value)->pixels, spans, 100);
                                              if (drawn)
                                                  kernel.run(1);
                                          }
                                      }});
            };
            jobs.push_back(job);
        }
}

// A row of the plane is 128 bytes and one of priorities 1024: read in about 8 and 18 ns, which is the yardstick. A kernel walks its
// rows besides, about 30 instructions or 4 ns each; two triangles in perspective divide for two edges and the row's start, 16 ns.
double gateGoal(const Shape &shape, double nanosecondsToRead)
{
    return 1 + (shape.kind == Kind::perspective ? 16 : 4) / nanosecondsToRead;
}

void addGates(std::vector<Job> &jobs)
{
    for (const Shape &shape : shapes()) {
        Job plane = shapeJob("taken.", shape);
        plane.axes.shahei = NINEFOLD_SHAHEI_PLANE;
        plane.setup = [] { std::memset(rs.shaheiPlane, 0xFF, frameSize * frameSize / 8); };
        plane.goal = gateGoal(shape, 8);
        plane.refused = true;
        plane.more = [](Contenders &contenders) {
            contenders.push_back({"read plane", Role::yardstick, "",
                                  [] { std::memset(rs.shaheiPlane, 0xFF, frameSize * frameSize / 8); },
                                  [spans = frameSpans()](long calls) {
                                      for (long i = 0; i < calls; ++i)
                                          sink = readPlane(rs.shaheiPlane, spans);
                                  }});
        };
        jobs.push_back(plane);
    }
    for (const Shape &shape : shapes()) {
        Job priority = shapeJob("behind.", shape);
        priority.axes.shahei = NINEFOLD_SHAHEI_PRIORITY;
        priority.axes.blend = alpha;
        priority.setup = [] { std::memset(rs.zBuffer, 50, frameSize * frameSize); };
        priority.goal = gateGoal(shape, 18);
        priority.refused = true;
        priority.more = [](Contenders &contenders) {
            contenders.push_back({"read priorities", Role::yardstick, "",
                                  [] { std::memset(rs.zBuffer, 50, frameSize * frameSize); },
                                  [spans = frameSpans()](long calls) {
                                      for (long i = 0; i < calls; ++i)
                                          sink = readPriorities(rs.zBuffer, spans, 100);
                                  }});
        };
        jobs.push_back(priority);
    }
}

// A second texture or a colour through a multi operator, in place of the frame buffer through the blend of that name. The blend
// reads two words and writes one, 12 bytes; with a second texture the frame buffer is fetched to be written besides, 16 bytes, which
// counts as a third only where memory decides. Of some 30 instructions for eight pixels 3 are more: a load, a test and a mask.
void addMulti(std::vector<Job> &jobs)
{
    struct Row {
        const char *name;
        int operation; // of SetBlendModeMulti and of the blend axis alike
        int multi, bank;
    };
    constexpr Row rows[] = {{"tex1.alpha", NINEFOLD_MULTI_OP_ALPHA, NINEFOLD_MULTI_TEXTURE, NINEFOLD_MULTI_BANK_PLAIN},
                            {"tex1.constalpha", NINEFOLD_MULTI_OP_CONST_ALPHA, NINEFOLD_MULTI_TEXTURE, NINEFOLD_MULTI_BANK_PLAIN},
                            {"tex1.alphafast", NINEFOLD_MULTI_OP_ALPHA_FAST, NINEFOLD_MULTI_TEXTURE, NINEFOLD_MULTI_BANK_PLAIN},
                            {"tex1.add", NINEFOLD_MULTI_OP_ADD, NINEFOLD_MULTI_TEXTURE, NINEFOLD_MULTI_BANK_PLAIN},
                            {"tex1.sub", NINEFOLD_MULTI_OP_SUB, NINEFOLD_MULTI_TEXTURE, NINEFOLD_MULTI_BANK_PLAIN},
                            {"tex1.mul", NINEFOLD_MULTI_OP_MUL, NINEFOLD_MULTI_TEXTURE, NINEFOLD_MULTI_BANK_PLAIN},
                            {"tex1.mul2", NINEFOLD_MULTI_OP_MUL2, NINEFOLD_MULTI_TEXTURE, NINEFOLD_MULTI_BANK_PLAIN},
                            {"tex1.screen", NINEFOLD_MULTI_OP_SCREEN, NINEFOLD_MULTI_TEXTURE, NINEFOLD_MULTI_BANK_PLAIN},
                            {"tex1.overlay", NINEFOLD_MULTI_OP_OVERLAY, NINEFOLD_MULTI_TEXTURE, NINEFOLD_MULTI_BANK_PLAIN},
                            {"tex1.merge", NINEFOLD_MULTI_OP_MERGE, NINEFOLD_MULTI_TEXTURE, NINEFOLD_MULTI_BANK_PLAIN},
                            {"tex1.scaled.alpha", NINEFOLD_MULTI_OP_ALPHA, NINEFOLD_MULTI_TEXTURE, NINEFOLD_MULTI_BANK_SCALED},
                            {"tex1.scaled.mul", NINEFOLD_MULTI_OP_MUL, NINEFOLD_MULTI_TEXTURE, NINEFOLD_MULTI_BANK_SCALED},
                            {"corners.mul", NINEFOLD_MULTI_OP_MUL, NINEFOLD_MULTI_CORNERS, NINEFOLD_MULTI_BANK_PLAIN},
                            {"colour.alpha", NINEFOLD_MULTI_OP_ALPHA, NINEFOLD_MULTI_COLOUR, NINEFOLD_MULTI_BANK_PLAIN},
                            {"colour.mul", NINEFOLD_MULTI_OP_MUL, NINEFOLD_MULTI_COLOUR, NINEFOLD_MULTI_BANK_PLAIN}};
    for (const Row &row : rows) {
        Job job = rectangleJob(std::string("multi.") + row.name, Kind::blit,
                               axesOf(NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_UNIT, NINEFOLD_FILTER_POINT, copy), Content::opaque,
                               frameSize);
        job.axes.multi = uint8_t(row.multi);
        job.ownOnly = true;
        job.goal = 1.2;
        job.setup = [row] {
            rs.tex1 = texture(Content::soft, frameSize);
            SetPrescaleMultiMode(row.bank);
            SetBlendModeMulti(row.operation);
        };
        const auto blend =
            besides(job, axesOf(NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_UNIT, NINEFOLD_FILTER_POINT, Blend(row.operation)));
        blend->work.content = Content::soft;
        job.more = [blend](Contenders &contenders) {
            contenders.push_back(kernelAs("blend alone", Role::yardstick, *blend, blend->axes, {}));
        };
        jobs.push_back(job);
    }
}

uint32_t hostOperator(uint32_t first, uint32_t second) { return first ^ (second & 0x00FFFFFF) ^ 0x5A; }
PixelOperator volatile hostPointer = hostOperator; // so that the call stays a call

// A host's own operators see the picture as it grows, so they cost a call a pixel and what stands between two calls: the yardstick,
// with as many calls. The blend alone at unit scale has a block of its own; behind a gate it goes by parts, which store and load
// the source, what lets it through and the second operand: about 10 instructions where a call takes 20 to the end. The fixed part
// of a kernel, some 200 instructions, is a fifth of 64 calls.
void addCustom(std::vector<Job> &jobs)
{
    struct Row {
        const char *name;
        bool blend, multi;
        uint8_t shahei;
    };
    constexpr Row rows[] = {{"custom.blend", true, false, NINEFOLD_SHAHEI_NONE},
                            {"custom.blend.mask", true, false, NINEFOLD_SHAHEI_STIPPLE},
                            {"custom.multi", false, true, NINEFOLD_SHAHEI_NONE},
                            {"custom.both", true, true, NINEFOLD_SHAHEI_NONE}};
    for (const Row &row : rows)
        for (int size : {frameSize, 8}) {
            Job job = rectangleJob(row.name, Kind::blit,
                                   axesOf(NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_UNIT, NINEFOLD_FILTER_POINT,
                                          row.blend ? Blend(NINEFOLD_BLEND_CUSTOM) : copy),
                                   Content::opaque, size);
            job.axes.shahei = row.shahei;
            if (row.multi)
                job.axes.multi = NINEFOLD_MULTI_TEXTURE;
            job.ownOnly = true;
            job.goal = (row.multi || row.shahei ? 1.5 : 1.1) + (size < frameSize ? 0.2 : 0);
            job.setup = [] {
                rs.tex1 = rs.tex0;
                rs.uv1[0].u += 0x10000; // not the same texel twice: the operator is its own inverse
                rs.blendFunc = rs.multiFunc = hostOperator;
            };
            job.more = [size, times = row.blend + row.multi](Contenders &contenders) {
                std::vector<Span> spans;
                for (int y = 0; y < size; ++y)
                    spans.insert(spans.end(), size_t(times), {y, 0, size});
                contenders.push_back({"calls", Role::yardstick, "", {}, [spans](long calls) {
                                          for (long i = 0; i < calls; ++i)
                                              callPerPixel(frame().pixels, straight(Content::opaque, frameSize).pixels, spans,
                                                           hostPointer);
                                      }});
            };
            jobs.push_back(job);
        }
}

// Against the same kernel without mip levels drawn twice, on the level and on the next. That reads as many texels and writes the
// frame buffer twice, 8 bytes more, for which a mix of two words is about as many instructions: no more than the two together.
void addMip(std::vector<Job> &jobs)
{
    struct Row {
        const char *name;
        int shape, rectOpt, filter, plainFilter;
        int multi;
    };
    constexpr Row rows[] = {{"mip.point.stretch", NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_STRETCH, NINEFOLD_FILTER_MIP,
                             NINEFOLD_FILTER_POINT, NINEFOLD_MULTI_NONE},
                            {"mip.point.mixed.stretch", NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_STRETCH, NINEFOLD_FILTER_MIP,
                             NINEFOLD_FILTER_POINT, NINEFOLD_MULTI_COLOUR},
                            {"mip.bilinear.stretch", NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_STRETCH,
                             NINEFOLD_FILTER_MIP_BILINEAR, NINEFOLD_FILTER_BILINEAR, NINEFOLD_MULTI_NONE},
                            {"mip.point.triangles", NINEFOLD_SHAPE_TRIANGLE, NINEFOLD_RECT_NONE, NINEFOLD_FILTER_MIP,
                             NINEFOLD_FILTER_POINT, NINEFOLD_MULTI_NONE},
                            {"mip.point.mixed.triangles", NINEFOLD_SHAPE_TRIANGLE, NINEFOLD_RECT_NONE, NINEFOLD_FILTER_MIP,
                             NINEFOLD_FILTER_POINT, NINEFOLD_MULTI_COLOUR},
                            {"mip.bilinear.triangles", NINEFOLD_SHAPE_TRIANGLE, NINEFOLD_RECT_NONE, NINEFOLD_FILTER_MIP_BILINEAR,
                             NINEFOLD_FILTER_BILINEAR, NINEFOLD_MULTI_NONE}};
    for (const Row &row : rows) {
        Job job = rectangleJob(row.name, row.shape == NINEFOLD_SHAPE_TRIANGLE ? Kind::corners : Kind::stretch,
                               axesOf(row.shape, row.rectOpt, row.filter, copy), Content::opaque, frameSize, 3);
        Primitive &p = job.work.primitives[0];
        if (row.shape == NINEFOLD_SHAPE_TRIANGLE)
            p.uv[3] = p.uv[1], p.uv[1].v = p.uv[0].v, p.uv[2] = {p.uv[0].u, p.uv[3].v};
        job.axes.multi = uint8_t(row.multi);
        job.work.bilinear = row.filter == NINEFOLD_FILTER_MIP_BILINEAR;
        job.work.mipmapped = true;
        job.ownOnly = row.multi != NINEFOLD_MULTI_NONE;
        job.work.maps = {{{{3, 0, double(p.texelU())}, {0, 3, double(p.texelV())}, {0, 0, 1}}}};
        job.goal = 1;
        job.setup = [] {
            rs.tex1 = nullptr, SetPrescaleMultiMode(NINEFOLD_MULTI_BANK_PLAIN), SetBlendModeMulti(NINEFOLD_MULTI_OP_MUL);
        };
        std::array<std::shared_ptr<Job>, 2> levels;
        for (size_t i : {0, 1}) {
            levels[i] = besides(job, axesOf(row.shape, row.rectOpt, row.plainFilter, copy));
            levels[i]->axes.multi = uint8_t(i == 0 ? row.multi : NINEFOLD_MULTI_NONE);
            for (TexCoord &uv : levels[i]->work.primitives[0].uv)
                uv = {uv.u >> (i + 1), uv.v >> (i + 1)};
        }
        job.more = [levels, setup = job.setup](Contenders &contenders) {
            std::array<Contender, 2> plain;
            for (size_t i : {0, 1})
                plain[i] = kernelAs("", Role::yardstick, *levels[i], levels[i]->axes, setup);
            contenders.push_back({"two plain draws", Role::yardstick, "", plain[0].prepare, [=](long calls) {
                                      const Texture *const base = texture(levels[0]->work.content, levels[0]->work.textureSize);
                                      for (long n = 0; n < calls; ++n)
                                          for (size_t i : {0, 1}) {
                                              rs.tex0 = base->mip[i + 1];
                                              plain[i].run(1);
                                          }
                                  }});
        };
        jobs.push_back(job);
    }
}

// By the run-length map against the same without. A hole of 60 pixels on average leaves out all cache lines of 16 pixels but one,
// three quarters of what is fetched and written for it, and as many vectors.
void addRuns(std::vector<Job> &jobs)
{
    constexpr std::pair<Content, int> shares[] = {{Content::soft, 0},     {Content::holes10, 10}, {Content::holes30, 30},
                                                  {Content::holes50, 50}, {Content::holes70, 70}, {Content::holes90, 90}};
    for (const auto &[content, percent] : shares)
        for (const Blend blend : {copy, alpha})
            for (int size : {frameSize, 64}) {
                Job job = rectangleJob((blend == copy ? "runs.copy." : "runs.alpha.") + std::to_string(percent) + "%", Kind::blit,
                                       axesOf(NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_RUNS, NINEFOLD_FILTER_POINT, blend),
                                       content, size);
                for (Primitive &p : job.work.primitives) // what a hole of 128 would need before it
                    p.vertex[0].x = std::max(p.vertex[0].x, size == frameSize ? 0 : 128), p.vertex[1].x = p.vertex[0].x + size;
                job.goal = 1 - 0.75 * percent / 100;
                job.ownOnly = true;
                job.more = [plain = besides(job, axesOf(NINEFOLD_SHAPE_RECTANGLE, NINEFOLD_RECT_UNIT, NINEFOLD_FILTER_POINT,
                                                        blend))](Contenders &contenders) {
                    contenders.push_back(kernelAs("no map", Role::yardstick, *plain, plain->axes, {}));
                };
                jobs.push_back(job);
            }
}

// A row is one call of memset, about 25 instructions at these lengths. The triangle steps two edges, clips and finds the address:
// 15 more, and for bits 14 for the words that are not whole; large rows of bytes take several times their instructions. Its set-up
// has three divisions and their like, about 30 ns, a fifth of 22 rows.
void addOcclusion(std::vector<Job> &jobs)
{
    struct Row {
        const char *name;
        DrawFunc kernel;
        int pixelsPerByte;
        double largeGoal, smallGoal;
    };
    constexpr Row rows[] = {{"occlusion.bytes", DrawZbufferPolygon, 1, 1.15, 1.5},
                            {"occlusion.bits", DrawShaheiPolygonSet, 8, 2, 1.7}};
    for (const Row &row : rows)
        for (const bool large : {true, false}) {
            Job job;
            job.name = std::string(row.name) + (large ? "/large" : "/30px");
            job.kernel = row.kernel;
            job.axes = axesOf(NINEFOLD_SHAPE_TRIANGLE, NINEFOLD_RECT_NONE, NINEFOLD_FILTER_FLAT, copy);
            job.work.kind = Kind::flatTriangle;
            job.perCall = !large;
            job.ownOnly = true;
            job.goal = large ? row.largeGoal : row.smallGoal;
            Primitive p{};
            if (large)
                p.vertex[0] = {10, 5, 0}, p.vertex[1] = {1015, 240, 0}, p.vertex[2] = {230, 1018, 0};
            else
                p.vertex[0] = {300, 300, 0}, p.vertex[1] = {331, 308, 0}, p.vertex[2] = {309, 330, 0};
            job.work.primitives = {p};
            job.pixels = (double(p.vertex[1].x - p.vertex[0].x) * (p.vertex[2].y - p.vertex[0].y) -
                          double(p.vertex[2].x - p.vertex[0].x) * (p.vertex[1].y - p.vertex[0].y)) /
                         2;
            job.more = [row, p, pixels = job.pixels](Contenders &contenders) {
                const int rowsDrawn = p.vertex[2].y - p.vertex[0].y;
                const size_t bytes = size_t(pixels) / size_t(rowsDrawn * row.pixelsPerByte);
                contenders.push_back({"memset", Role::yardstick, "of as many bytes in as many rows", {}, [=](long calls) {
                                          for (long i = 0; i < calls; ++i)
                                              for (int y = 0; y < rowsDrawn; ++y)
                                                  std::memset(rs.zBuffer + (p.vertex[0].y + y) * frameSize / row.pixelsPerByte +
                                                                  p.vertex[0].x / row.pixelsPerByte,
                                                              int(i), bytes);
                                      }});
            };
            jobs.push_back(job);
        }
}

void addLookUp(std::vector<Job> &jobs)
{
    for (const bool hit : {true, false}) {
        Job job;
        job.name = hit ? "lookup.hit" : "lookup.miss";
        job.perCall = true;
        job.budget = hit ? 5 : 25;
        job.ownOnly = true;
        job.more = [hit](Contenders &contenders) {
            // Codes all over the catalogue, in random order, each unlike the one before.
            std::vector<Axes> modes;
            int n = 0;
            ninefold::forEachCombination([&](const Axes &a) {
                if (n++ % 480 == 0)
                    modes.push_back(a);
            });
            seed();
            for (size_t i = modes.size() - 1; i > 0; --i)
                std::swap(modes[i], modes[size_t(random(int(i)))]);
            modes.resize(64);
            contenders.push_back({"ninefold/v1", Role::ours, "CreateDrawCode and SearchDrawFunc", {}, [modes, hit](long calls) {
                                      const auto set = [](const Axes &a) {
                                          rs.persMode = a.pers, rs.ruleAlphaMode = a.rule, rs.prescaleMode = a.prescale;
                                          rs.filterMode = a.filter, rs.rectOptMode = a.rectOpt, rs.shaheiMode = a.shahei;
                                          rs.blendMode = a.blend, rs.multiMode = a.multi, rs.shapeMode = a.shape;
                                      };
                                      set(modes[0]);
                                      for (long i = 0; i < calls; ++i) {
                                          if (!hit)
                                              set(modes[size_t(i & 63)]);
                                          found = SearchDrawFunc(CreateDrawCode());
                                      }
                                  }});
        };
        jobs.push_back(job);
    }
}

std::vector<double> startUpSamples;

void addStartUp(std::vector<Job> &jobs)
{
    Job job;
    job.name = "startup";
    job.note = "the four calls in a fresh process";
    job.perCall = true;
    job.budget = 1e6;
    job.ownOnly = true;
    job.samples = startUpSamples;
    jobs.push_back(job);
}

} // namespace

void recordStartUp(int samples)
{
    for (int i = 0; i < samples; ++i) {
        int ends[2];
        if (pipe(ends) != 0)
            return;
        const pid_t child = fork();
        if (child == 0) {
            const auto start = std::chrono::steady_clock::now();
            MakeUVLShiftTable();
            MakeShaheiRunlengthTbl();
            MakeDrawFuncTable();
            MakeDrawMaskTable();
            const std::chrono::duration<double, std::nano> time = std::chrono::steady_clock::now() - start;
            const double nanoseconds = time.count();
            _exit(write(ends[1], &nanoseconds, sizeof nanoseconds) == sizeof nanoseconds ? 0 : 1);
        }
        close(ends[1]);
        double nanoseconds;
        if (child > 0 && read(ends[0], &nanoseconds, sizeof nanoseconds) == sizeof nanoseconds)
            startUpSamples.push_back(nanoseconds);
        close(ends[0]);
        if (child > 0)
            waitpid(child, nullptr, 0);
    }
}

void addOwnJobs(std::vector<Job> &jobs)
{
    seed();
    addRules(jobs);
    addGates(jobs);
    addMulti(jobs);
    addCustom(jobs);
    addMip(jobs);
    addRuns(jobs);
    addOcclusion(jobs);
    addLookUp(jobs);
    addStartUp(jobs);
}

} // namespace bench
