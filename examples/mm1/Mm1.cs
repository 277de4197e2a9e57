// Multimedia messages as a handset sends and fetches them (docs/mm1.md).
// A modem that is given by its name in Windows dials; without one, or with a port, the connection of the machine is used.
// Build: tlbimp NeltCtrlx64.dll /out:NeltCtrl.Interop.dll /namespace:NeltCtrl
//        csc /r:NeltCtrl.Interop.dll /platform:x64 Mm1.cs
using System;
using System.Collections.Generic;
using System.IO;
using System.Text.RegularExpressions;
using NeltCtrl;

static class Program
{
    const int NoMoreMessages = 33060;
    static readonly MmsProtocolMm1 mm1 = new MmsProtocolMm1();

    static void Check(int code)
    {
        if (code != 0) throw new Exception(code + " " + mm1.GetErrorDescription(code));
    }

    static void Use(string device)
    {
        if (device != "") mm1.Device = device;
        if (device == "" || Regex.IsMatch(device, @"^COM\d+:?$", RegexOptions.IgnoreCase))
        {
            mm1.AdvancedSettings = "UseExistingConnection=1";
        }
    }

    // Ends the connection whatever happens on it.
    static void WithConnection(Action job)
    {
        mm1.Connect();
        Check(mm1.LastError);
        try { job(); }
        finally { mm1.Disconnect(); }
    }

    static void Send(string recipient, string text, string picture, string modem)
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
        Use(modem);
        WithConnection(() =>
        {
            object sent = message;
            mm1.Send(ref sent);
            Check(mm1.LastError);
            Console.WriteLine("Sent, message id " + mm1.MessageId);
        });
    }

    static void Receive(string device, string folder)
    {
        Use(device);
        // All notifications first: while a connection is dialled, the modem tells nothing.
        var locations = new List<string>();
        for (var notification = mm1.GetFirstMessage() as ISmsMessage; mm1.LastError == 0;
             notification = mm1.GetNextMessage() as ISmsMessage)
        {
            var location = Regex.Match(notification.Data, @"\bURL=(\S+)");
            if (location.Success) locations.Add(location.Groups[1].Value);
        }
        if (mm1.LastError != NoMoreMessages) Check(mm1.LastError);
        WithConnection(() =>
        {
            for (int i = 0; i < locations.Count; ++i)
            {
                var message = mm1.Retrieve(locations[i]) as IMmsMessage;
                Check(mm1.LastError);
                Console.WriteLine("From " + message.From + ": " + message.Subject);
                message.SaveToFile(Path.Combine(folder, "message" + (i + 1) + ".mms"), 2);  // as it was received
                Check(message.LastError);
            }
        });
    }

    [STAThread]
    static void Main(string[] args)
    {
        bool send = args.Length > 4 && args[0] == "send";
        bool receive = args.Length > 3 && args[0] == "receive";
        if (!send && !receive)
        {
            Console.WriteLine(@"Mm1.exe send provider.ini +31612345678 ""The text"" picture.jpg [modem] | " +
                              "receive provider.ini COM5 folder");
            Environment.Exit(2);
        }
        mm1.ProviderLoadConfig(args[1]);
        Check(mm1.LastError);
        if (send) Send(args[2], args[3], args[4], args.Length > 5 ? args[5] : "");
        if (receive) Receive(args[2], args[3]);
    }
}
