using System.Runtime.CompilerServices;

[assembly: InternalsVisibleTo("Zarvik.Orvella.Editor")]
[assembly: InternalsVisibleTo("Zarvik.Orvella.LibraryTests")]
