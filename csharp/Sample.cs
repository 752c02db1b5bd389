// Compares the layout of the records with the kit's description, then draws a picture, lines and a text into sample.png:
// Sample.exe [picture]. Without a picture it is one of sixteen colours.
using System;
using System.Runtime.InteropServices;
using Ninefold;

static unsafe class Sample
{
    static string Text(IntPtr utf8)
    {
        int length = 0;
        while (Marshal.ReadByte(utf8, length) != 0)
            ++length;
        byte[] bytes = new byte[length];
        Marshal.Copy(utf8, bytes, 0, length);
        return System.Text.Encoding.UTF8.GetString(bytes);
    }

    // Passes on what a function of the kit returned, and throws where it failed.
    static void* Checked(void* result)
    {
        if (result == null)
            throw new InvalidOperationException(Text(Native.nfkError()));
        return result;
    }
    static void Checked(int result)
    {
        if (result == 0)
            throw new InvalidOperationException(Text(Native.nfkError()));
    }

    static void CheckLayout()
    {
        foreach (Type record in Native.Records) {
            if (Marshal.SizeOf(record) != Native.nfkRecordSize(record.Name))
                throw new InvalidOperationException(record.Name + " has another size in the library");
            uint count;
            NfkField* fields = Native.nfkFields(record.Name, &count);
            for (uint i = 0; i < count; ++i) {
                string name = Text((IntPtr)fields[i].name);
                if (record.GetField(name) == null)
                    name += "0"; // the first of an array of records or addresses
                if (Marshal.OffsetOf(record, name).ToInt64() != fields[i].offset)
                    throw new InvalidOperationException(record.Name + "." + name + " lies elsewhere in the library");
            }
        }
    }

    static int Main(string[] arguments)
    {
        try {
            CheckLayout();
            NfkScreen* screen = (NfkScreen*)Checked(Native.nfkCreateScreen(320, 200));
            Checked(Native.nfkClearScreen(screen, 0xFF102040));

            Texture* picture = arguments.Length > 0 ? (Texture*)Checked(Native.nfkLoadPicture(arguments[0], 0))
                                                    : Native.CreateTexture((UIntPtr)4, (UIntPtr)4);
            for (uint i = 0; arguments.Length == 0 && i < 16; ++i)
                picture->pixels[i] = 0xFF000000 | 0xF0A040u * (i + 1);

            NfkOptions options = Native.nfkOptions();
            options.filter = (int)Filter.Bilinear;
            options.blend = (int)Blend.ConstAlpha;
            options.blendAlpha = 200;
            NfkRect target = new NfkRect { x = 20, y = 20, width = 280, height = 160 };
            Checked(Native.nfkPicture(picture, &target, null, &options));
            for (int i = 0; i < 10; ++i)
                Checked(Native.nfkLine(20, 20 + 16 * i, 300, 180 - 16 * i, 0xFFFFFFFF, null));

            IntPtr font = Native.nfkOpenFont("DejaVu Sans:bold", 28);
            if (font == IntPtr.Zero)
                throw new InvalidOperationException(Text(Native.nfkError()));
            NfkTextStyle style = new NfkTextStyle { color = 0xFFFFFFFF, rimColor = 0xFF000000, rim = 2 };
            Checked(Native.nfkWrite(font, "Ninefold für C#", 60, 80, &style));
            Native.nfkCloseFont(font);

            Checked(Native.nfkSavePicture(screen->texture, "sample.png", 0));
            Native.DeleteTexture(picture);
            Native.nfkReleaseScreen(screen);
            Console.WriteLine("sample.png");
            return 0;
        } catch (InvalidOperationException error) {
            Console.Error.WriteLine("sample: " + error.Message);
            return 1;
        }
    }
}
