// Picture files as words 0xAARRGGBB with straight alpha; pixels of alpha 0 become the word 0, no pixel. A canvas would multiply
// colours by alpha, and alpha 1 would leave nothing of them: PNG files are decoded here, others by way of a WebGL texture.
import { decode } from "fast-png";

export interface Picture {
    words: Uint32Array;
    width: number;
    height: number;
}

export const largestSide = 2048;

function wordsOf(bytes: ArrayLike<number>, channels: number): Uint32Array {
    const words = new Uint32Array(bytes.length / channels);
    for (let i = 0; i < words.length; ++i) {
        const at = i * channels;
        const grey = channels < 3;
        const red = bytes[at];
        const green = grey ? red : bytes[at + 1];
        const blue = grey ? red : bytes[at + 2];
        const alpha = channels % 2 ? 255 : bytes[at + channels - 1];
        words[i] = alpha ? ((alpha << 24) | (red << 16) | (green << 8) | blue) >>> 0 : 0;
    }
    return words;
}

// Null for kinds that are left to the browser: palettes, and other than 8 bits a channel.
export function decodePng(bytes: Uint8Array): Picture | null {
    const png = decode(bytes);
    if (png.depth !== 8 || png.palette || png.transparency) return null;
    return { words: wordsOf(png.data, png.channels), width: png.width, height: png.height };
}

async function decodeByBrowser(file: Blob): Promise<Picture> {
    const bitmap = await createImageBitmap(file, { premultiplyAlpha: "none", colorSpaceConversion: "none" });
    const { width, height } = bitmap;
    const gl = new OffscreenCanvas(1, 1).getContext("webgl");
    if (!gl) throw new Error("this browser has no WebGL, by which pictures other than 8-bit PNG files are read; convert it to PNG");
    gl.bindTexture(gl.TEXTURE_2D, gl.createTexture());
    gl.pixelStorei(gl.UNPACK_PREMULTIPLY_ALPHA_WEBGL, false);
    gl.texImage2D(gl.TEXTURE_2D, 0, gl.RGBA, gl.RGBA, gl.UNSIGNED_BYTE, bitmap);
    gl.bindFramebuffer(gl.FRAMEBUFFER, gl.createFramebuffer());
    gl.framebufferTexture2D(gl.FRAMEBUFFER, gl.COLOR_ATTACHMENT0, gl.TEXTURE_2D, gl.getParameter(gl.TEXTURE_BINDING_2D), 0);
    if (gl.checkFramebufferStatus(gl.FRAMEBUFFER) !== gl.FRAMEBUFFER_COMPLETE) throw new Error("WebGL does not take a picture of this size");
    const bytes = new Uint8Array(width * height * 4);
    gl.readPixels(0, 0, width, height, gl.RGBA, gl.UNSIGNED_BYTE, bytes);
    return { words: wordsOf(bytes, 4), width, height };
}

function isPng(bytes: Uint8Array): boolean {
    return [0x89, 0x50, 0x4e, 0x47, 0x0d, 0x0a, 0x1a, 0x0a].every((byte, i) => bytes[i] === byte);
}

// Throws an error whose message says what is wrong with the file.
export async function readPicture(file: File): Promise<Picture> {
    const bytes = new Uint8Array(await file.arrayBuffer());
    let picture: Picture | null = null;
    try {
        if (isPng(bytes)) {
            const view = new DataView(bytes.buffer);
            const width = bytes.length > 24 ? view.getUint32(16) : 0, height = bytes.length > 24 ? view.getUint32(20) : 0;
            if (width > largestSide || height > largestSide) throw new Error(`${width} x ${height} pixels is too large; sides are at most ${largestSide} pixels`);
            picture = decodePng(bytes);
        }
        picture ??= await decodeByBrowser(file);
    } catch (error) {
        throw new Error(`${file.name}: no picture that this browser reads (${(error as Error).message})`);
    }
    if (picture.width > largestSide || picture.height > largestSide)
        throw new Error(`${file.name}: ${picture.width} x ${picture.height} pixels is too large; sides are at most ${largestSide} pixels`);
    return picture;
}
