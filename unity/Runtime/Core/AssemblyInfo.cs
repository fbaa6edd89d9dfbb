using System.Runtime.CompilerServices;

[assembly: InternalsVisibleTo("Zarvik.Orvella")]
[assembly: InternalsVisibleTo("Zarvik.Orvella.Tests")]
[assembly: InternalsVisibleTo("Zarvik.Orvella.LibraryTests")]
