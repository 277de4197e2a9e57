// Sends a text and pictures to a peer MMS server.
// Build: tlbimp NeltCtrlx64.dll /out:NeltCtrl.Interop.dll /namespace:NeltCtrl
//        csc /r:NeltCtrl.Interop.dll /platform:x64 Mm4.cs
using System;
using System.Linq;
using NeltCtrl;

static class Program
{
    static void Check(int error, string text, string what)
    {
        if (error != 0) throw new Exception(what + ": " + error + " " + text);
    }

    [STAThread]
    static void Main(string[] args)
    {
        ushort port = 0;
        if (args.Length < 7 || !ushort.TryParse(args[1], out port))
        {
            Console.WriteLine(@"Mm4.exe 127.0.0.1 2525 account password 31612345678 example.net ""The text"" picture.jpg ...");
            Environment.Exit(2);
        }
        var peer = new MmsProtocolMm4
        {
            ProviderHost = args[0],
            ProviderPort = port,
            ProviderAccount = args[2],
            ProviderPassword = args[3],
            ProviderDomain = args[5]
        };
        var message = new MmsMessage { From = "+31600000001", Subject = "Pictures" };
        message.AddRecipient(args[4]);
        Check(message.LastError, message.GetErrorDescription(message.LastError), "The recipient");

        var slide = new MmsSlide();
        slide.AddText(args[6]);
        foreach (string picture in args.Skip(7))
        {
            slide.AddAttachment(picture);
            Check(slide.LastError, slide.GetErrorDescription(slide.LastError), picture);
        }
        object added = slide;
        message.AddSlide(ref added);
        Check(message.LastError, message.GetErrorDescription(message.LastError), "The slide");

        object sent = message;
        peer.Send(ref sent);
        Check(peer.LastError, peer.GetErrorDescription(peer.LastError), "Send failed");
        Console.WriteLine("Answer: " + peer.ProviderResponse);
    }
}
