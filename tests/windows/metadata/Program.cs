// Prints the types of a .winmd file as JSON: their kind, attributes, interfaces and methods, in the file's order.

using System.Reflection;
using System.Reflection.Metadata;
using System.Reflection.PortableExecutable;
using System.Text.Json;

using var file = new PEReader(File.OpenRead(args[0]));
var reader = file.GetMetadataReader(MetadataReaderOptions.None); // As it stands, without .NET's names for types.
var names = new Names();

var types = reader.TypeDefinitions.Select(reader.GetTypeDefinition)
    .Where(type => reader.GetString(type.Name) != "<Module>")
    .ToDictionary(
        type => names.GetTypeFromDefinition(reader, type),
        type => new
        {
            parent = type.BaseType.IsNil ? null : names.GetTypeFromHandle(reader, type.BaseType),
            windowsRuntime = type.Attributes.HasFlag(TypeAttributes.WindowsRuntime),
            attributes = Attributes(type.GetCustomAttributes()),
            interfaces = type.GetInterfaceImplementations().Select(reader.GetInterfaceImplementation).ToDictionary(
                each => names.GetTypeFromHandle(reader, each.Interface),
                each => Attributes(each.GetCustomAttributes())),
            methods = type.GetMethods().Select(reader.GetMethodDefinition).Select(Method),
            events = type.GetEvents().Select(each => reader.GetString(reader.GetEventDefinition(each).Name)),
        });
Console.WriteLine(JsonSerializer.Serialize(types));

string Method(MethodDefinition method)
{
    var signature = method.DecodeSignature(names, null);
    return $"{signature.ReturnType} {reader.GetString(method.Name)}({string.Join(", ", signature.ParameterTypes)})";
}

// Of each attribute its arguments as text: enumerations by number, types by name.
SortedDictionary<string, string> Attributes(CustomAttributeHandleCollection handles)
{
    var result = new SortedDictionary<string, string>(StringComparer.Ordinal);
    foreach (var attribute in handles.Select(reader.GetCustomAttribute))
    {
        var constructor = reader.GetMemberReference((MemberReferenceHandle)attribute.Constructor);
        var name = names.GetTypeFromHandle(reader, constructor.Parent);
        var arguments = attribute.DecodeValue(names).FixedArguments.Select(argument => argument.Value!).ToArray();
        result[name] = name == "Windows.Foundation.Metadata.GuidAttribute"
            ? ((Guid)Activator.CreateInstance(typeof(Guid), arguments)!).ToString()
            : string.Join(", ", arguments);
    }
    return result;
}

/// Types by their full names, which is all that is printed of them.
sealed class Names : ISignatureTypeProvider<string, object?>, ICustomAttributeTypeProvider<string>
{
    public string GetTypeFromHandle(MetadataReader reader, EntityHandle handle) => handle.Kind switch
    {
        HandleKind.TypeReference => GetTypeFromReference(reader, (TypeReferenceHandle)handle, 0),
        HandleKind.TypeDefinition => GetTypeFromDefinition(reader, (TypeDefinitionHandle)handle, 0),
        _ => throw new BadImageFormatException($"a type is given as {handle.Kind}"),
    };

    public string GetTypeFromDefinition(MetadataReader reader, TypeDefinition type) =>
        $"{reader.GetString(type.Namespace)}.{reader.GetString(type.Name)}";

    public string GetTypeFromDefinition(MetadataReader reader, TypeDefinitionHandle handle, byte kind) =>
        GetTypeFromDefinition(reader, reader.GetTypeDefinition(handle));

    public string GetTypeFromReference(MetadataReader reader, TypeReferenceHandle handle, byte kind)
    {
        var type = reader.GetTypeReference(handle);
        return $"{reader.GetString(type.Namespace)}.{reader.GetString(type.Name)}";
    }

    public string GetPrimitiveType(PrimitiveTypeCode type) => type.ToString();
    public string GetSystemType() => "System.Type";
    public bool IsSystemType(string type) => type == GetSystemType();
    public string GetTypeFromSerializedName(string name) => name;
    public PrimitiveTypeCode GetUnderlyingEnumType(string type) => PrimitiveTypeCode.Int32;

    // No component of ours has these.
    public string GetArrayType(string type, ArrayShape shape) => throw new NotSupportedException();
    public string GetByReferenceType(string type) => throw new NotSupportedException();
    public string GetFunctionPointerType(MethodSignature<string> signature) => throw new NotSupportedException();
    public string GetGenericInstantiation(string type, System.Collections.Immutable.ImmutableArray<string> arguments) =>
        throw new NotSupportedException();
    public string GetGenericMethodParameter(object? context, int index) => throw new NotSupportedException();
    public string GetGenericTypeParameter(object? context, int index) => throw new NotSupportedException();
    public string GetModifiedType(string modifier, string type, bool required) => throw new NotSupportedException();
    public string GetPinnedType(string type) => throw new NotSupportedException();
    public string GetPointerType(string type) => throw new NotSupportedException();
    public string GetSZArrayType(string type) => throw new NotSupportedException();
    public string GetTypeFromSpecification(MetadataReader reader, object? context, TypeSpecificationHandle handle,
        byte kind) => throw new NotSupportedException();
}
