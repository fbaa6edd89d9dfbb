namespace Zarvik.Orvella
{
    /// <summary>Booleans as native code wants them: one byte.</summary>
    internal static class NativeBoolean
    {
        internal static byte From(bool value)
        {
            return value ? (byte)1 : (byte)0;
        }
    }
}
