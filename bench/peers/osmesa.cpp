// Mesa's software rasteriser, off screen and on one thread: OpenGL 2 with immediate vertices. It keeps a picture of its own and
// copies it into the frame buffer at the end of a turn.
#include "../scene.h"

#include <GL/gl.h>
#include <GL/osmesa.h>

#include <cstdlib>
#include <memory>

namespace bench {

namespace {

void colour(uint32_t c) { glColor4ub(GLubyte(c >> 16), GLubyte(c >> 8), GLubyte(c), GLubyte(c >> 24)); }

// One context for all; a job's state is set before each turn, and the picture starts as the frame buffer's.
OSMesaContext context()
{
    static OSMesaContext made = [] {
        setenv("LP_NUM_THREADS", "0", 1);
        const int attributes[] = {OSMESA_FORMAT, OSMESA_BGRA, OSMESA_DEPTH_BITS, 0, OSMESA_STENCIL_BITS, 0, 0};
        return OSMesaCreateContextAttribs(attributes, nullptr);
    }();
    return made;
}

void bind()
{
    OSMesaMakeCurrent(context(), frame().pixels, GL_UNSIGNED_BYTE, frameSize, frameSize);
    OSMesaPixelStore(OSMESA_Y_UP, 0);
    glViewport(0, 0, frameSize, frameSize);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, frameSize, frameSize, 0, -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
}

void upload()
{
    glDisable(GL_TEXTURE_2D);
    glDisable(GL_BLEND);
    glRasterPos2i(0, 0);
    glPixelZoom(1, -1);
    glDrawPixels(frameSize, frameSize, GL_BGRA, GL_UNSIGNED_BYTE, frame().pixels);
}

using TextureName = std::shared_ptr<GLuint>;

TextureName textureOf(const Work &work)
{
    TextureName name(new GLuint(0), [](GLuint *made) { glDeleteTextures(1, made), delete made; });
    glGenTextures(1, name.get());
    glBindTexture(GL_TEXTURE_2D, *name);
    const Texture *const source = texture(work.content, work.textureSize);
    const GLint filter = work.bilinear ? GL_LINEAR : GL_NEAREST;
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER,
                    !work.mipmapped ? filter
                    : work.bilinear ? GL_LINEAR_MIPMAP_LINEAR
                                    : GL_NEAREST_MIPMAP_NEAREST);
    const int levels = work.mipmapped ? int(source->mipCount) : 1;
    for (int level = 0; level < levels; ++level) {
        const Texture *const each = level ? source->mip[level] : source;
        glTexImage2D(GL_TEXTURE_2D, level, GL_RGBA8, GLsizei(each->width), GLsizei(each->height), 0, GL_BGRA, GL_UNSIGNED_BYTE,
                     each->pixels);
    }
    return name;
}

void make(const Work &work, Contenders &contenders)
{
    const bool textured = work.kind == Kind::stretch || work.kind == Kind::corners || work.kind == Kind::triangle ||
                          work.kind == Kind::perspective || work.kind == Kind::table;
    const bool colours = work.kind == Kind::flatTriangle || work.kind == Kind::gouraudTriangle ||
                         work.kind == Kind::gouraudRect || work.kind == Kind::line || work.kind == Kind::fill;
    if (!(textured && (work.blend == copy || work.blend == alpha)) && !colours)
        return;
    if (!context())
        return;
    bind();
    const TextureName name = textured ? textureOf(work) : nullptr;
    const auto add = [&](auto draw) {
        contenders.push_back(
            contender("osmesa", Role::peer, "queued; its own picture, copied at the end of a turn", work, draw, glFinish));
        contenders.back().patience = 8;
        contenders.back().prepare = [name, blended = work.blend == alpha] {
            bind();
            upload();
            if (name) {
                glEnable(GL_TEXTURE_2D);
                glBindTexture(GL_TEXTURE_2D, *name);
                glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
            }
            if (blended) {
                glEnable(GL_BLEND);
                glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
            }
        };
    };
    const Primitive *const primitives = work.primitives.data();
    const float texel = 1 / (65536.0f * float(work.textureSize));
    switch (work.kind) {
    case Kind::line:
        add([=](size_t i) {
            const Primitive &p = primitives[i];
            glBegin(GL_LINES);
            colour(p.color[0]);
            for (int v : {0, 1})
                glVertex2f(float(p.vertex[v].x) + 0.5f, float(p.vertex[v].y) + 0.5f);
            glEnd();
        });
        break;
    case Kind::flatTriangle:
        add([=](size_t i) {
            glBegin(GL_TRIANGLES);
            colour(primitives[i].color[0]);
            for (int v = 0; v < 3; ++v)
                glVertex2i(primitives[i].vertex[v].x, primitives[i].vertex[v].y);
            glEnd();
        });
        break;
    case Kind::gouraudTriangle:
        add([=](size_t i) {
            glBegin(GL_TRIANGLES);
            for (int v = 0; v < 3; ++v) {
                colour(primitives[i].color[v]);
                glVertex2i(primitives[i].vertex[v].x, primitives[i].vertex[v].y);
            }
            glEnd();
        });
        break;
    case Kind::fill:
    case Kind::gouraudRect:
        add([=, gouraud = work.kind == Kind::gouraudRect](size_t i) {
            const Primitive &p = primitives[i];
            glBegin(GL_TRIANGLE_STRIP);
            for (int v = 0; v < 4; ++v) {
                colour(p.color[gouraud ? v : 0]);
                glVertex2i(p.vertex[v & 1].x, p.vertex[v >> 1].y);
            }
            glEnd();
        });
        break;
    case Kind::triangle:
        add([=](size_t i) {
            const Primitive &p = primitives[i];
            glBegin(GL_TRIANGLES);
            for (int v = 0; v < 3; ++v) {
                glTexCoord2f(float(p.uv[v].u) * texel, float(p.uv[v].v) * texel);
                glVertex2i(p.vertex[v].x, p.vertex[v].y);
            }
            glEnd();
        });
        break;
    default: { // rectangles, with the texture's place in homogeneous form
        struct Corner {
            float s, t, q;
            int x, y;
        };
        std::vector<Corner> corners;
        for (size_t i = 0; i < work.primitives.size(); ++i)
            for (int v = 0; v < 4; ++v) {
                const Primitive &p = primitives[i];
                const auto &m = work.maps[i].m;
                const int x = p.vertex[v & 1].x, y = p.vertex[v >> 1].y;
                const auto row = [&](int k) { return float(m[k][0] * x + m[k][1] * y + m[k][2]); };
                corners.push_back({row(0) / float(work.textureSize), row(1) / float(work.textureSize), row(2), x, y});
            }
        add([=](size_t i) {
            glBegin(GL_TRIANGLE_STRIP);
            for (size_t v = 0; v < 4; ++v) {
                const Corner &corner = corners[4 * i + v];
                glTexCoord4f(corner.s, corner.t, 0, corner.q);
                glVertex2i(corner.x, corner.y);
            }
            glEnd();
        });
    }
    }
}

const Peer registration("osmesa", make);

} // namespace

} // namespace bench
