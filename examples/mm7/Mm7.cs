// Submits a picture message to the MMS centre whose settings are in a file (docs/mm7.md).
// Build: tlbimp NeltCtrlx64.dll /out:NeltCtrl.Interop.dll /namespace:NeltCtrl
//        csc /r:NeltCtrl.Interop.dll /platform:x64 Mm7.cs
using System;
using NeltCtrl;

static class Program
{
    static readonly MmsProtocolMm7 mm7 = new MmsProtocolMm7();

    static void Check(int code)
    {
        if (code != 0) throw new Exception(code + " " + mm7.GetErrorDescription(code));
    }

    static MmsMessage Compose(string recipient, string text, string picture)
    {
        var slide = new MmsSlide();
        slide.AddText(text);
        slide.AddAttachment(picture);
        Check(slide.LastError);
        var message = new MmsMessage { Subject = "A picture" };
        message.AddRecipient(recipient);
        Check(message.LastError);
        object added = slide;
        message.AddSlide(ref added);
        return message;
    }

    [STAThread]
    static void Main(string[] args)
    {
        if (args.Length < 4)
        {
            Console.WriteLine(@"Mm7.exe provider.ini +31612345678 ""The text"" picture.jpg");
            Environment.Exit(2);
        }
        object message = Compose(args[1], args[2], args[3]);
        mm7.ProviderLoadConfig(args[0]);
        Check(mm7.LastError);
        mm7.Send(ref message);
        if (mm7.LastError != 0 && mm7.ProviderResponse != "") Console.WriteLine("The centre said: " + mm7.ProviderResponse);
        Check(mm7.LastError);
        Console.WriteLine("Sent, message id " + mm7.MessageId);
    }
}
