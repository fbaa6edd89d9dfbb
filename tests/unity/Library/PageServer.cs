using System;
using System.Collections.Concurrent;
using System.Collections.Specialized;
using System.Net;
using System.Net.Sockets;
using System.Text;

namespace Zarvik.Orvella.LibraryTests
{
    /// <summary>A local web server with a few pages.</summary>
    internal sealed class PageServer : IDisposable
    {
        private readonly HttpListener listener = new HttpListener();
        private readonly ConcurrentDictionary<string, bool> requests = new ConcurrentDictionary<string, bool>();
        private readonly string origin;

        internal PageServer()
        {
            origin = "http://127.0.0.1:" + FreePort() + "/";
            listener.Prefixes.Add(origin);
            listener.Start();
            Serve();
        }

        internal NameValueCollection LastHeaders { get; private set; }

        public void Dispose() => listener.Close();

        internal string Url(string path) => origin + path;

        internal bool HasRequested(string path) => requests.ContainsKey(path);

        private static int FreePort()
        {
            var probe = new TcpListener(IPAddress.Loopback, 0);
            probe.Start();
            int port = ((IPEndPoint)probe.LocalEndpoint).Port;
            probe.Stop();
            return port;
        }

        private async void Serve()
        {
            while (true)
            {
                HttpListenerContext context;
                try
                {
                    context = await listener.GetContextAsync().ConfigureAwait(false);
                }
                catch (Exception exception) when (exception is HttpListenerException || exception is ObjectDisposedException)
                {
                    return;
                }
                string path = context.Request.Url.AbsolutePath;
                LastHeaders = path == "/page" ? context.Request.Headers : LastHeaders;
                requests[path] = true;
                switch (path)
                {
                    case "/page":
                    case "/other":
                        Answer(context, 200, "<!DOCTYPE html><title>" + path + "</title>");
                        break;
                    case "/slow":
                    case "/slower":
                        // Never answered: the request ends with the page or the server.
                        break;
                    default:
                        Answer(context, 404, "missing");
                        break;
                }
            }
        }

        private static void Answer(HttpListenerContext context, int status, string html)
        {
            byte[] bytes = Encoding.UTF8.GetBytes(html);
            context.Response.StatusCode = status;
            context.Response.ContentType = "text/html; charset=utf-8";
            try
            {
                context.Response.Close(bytes, willBlock: true);
            }
            catch (HttpListenerException)
            {
                // The page has gone meanwhile.
            }
        }
    }
}
