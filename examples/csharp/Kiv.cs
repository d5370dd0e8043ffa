// The functions of kiv.h that a measuring host needs, for C#: kiv.dll on Windows, libkiv.so.1 on Linux.
// Others are declared in the same way.

using System;
using System.Runtime.InteropServices;
using System.Text;

namespace Kiv
{
    [StructLayout(LayoutKind.Sequential)]
    public struct Reading // 52 bytes
    {
        public int Unused1;
        public int Status;                         // 2: a measurement that yields an orientation
        public float X, Y, Z;                      // measured vector, the instrument's length unit
        public float Azimuth, Elevation;           // degrees
        public float LevelX, LevelY, Temperature;  // raw
        public float RefMetric;
        public int Unused2;
        public byte RefBlocked;                    // 1: does not become the reference
    }

    [StructLayout(LayoutKind.Sequential)]
    public struct Result // 48 bytes
    {
        public int Unused1;
        public float Azimuth, Elevation, LevelX, LevelY; // corrected, degrees
        public float Rx, Rz, Ry;                         // degrees; mind the order
        public int Unused2;
        public float QvcX, QvcY, QvcZ;
    }

    public enum State : byte { Ok, Status, NoReference, Reference, NoOrientation, Refused }

    public class KivException : Exception
    {
        public readonly int Code;
        public KivException(int code, string text) : base(text) { Code = code; }
    }

    internal static class Native
    {
        private const string Library = "kiv";
        private const CallingConvention C = CallingConvention.Cdecl;

        [DllImport(Library, CallingConvention = C)] public static extern IntPtr kiv_version();
        [DllImport(Library, CallingConvention = C)] public static extern IntPtr kiv_status_text(int status);
        [DllImport(Library, CallingConvention = C)] public static extern int kiv_parameters_new(out IntPtr parameters);
        [DllImport(Library, CallingConvention = C)] public static extern void kiv_parameters_free(IntPtr parameters);
        [DllImport(Library, CallingConvention = C)]
        public static extern int kiv_parameters_load(IntPtr parameters, byte[] path);
        [DllImport(Library, CallingConvention = C)]
        public static extern int kiv_parameters_fault(IntPtr parameters, UIntPtr index, out long line,
            out long column, out IntPtr expected, out IntPtr found);
        [DllImport(Library, CallingConvention = C)]
        public static extern int kiv_sensor_new(IntPtr parameters, out IntPtr sensor);
        [DllImport(Library, CallingConvention = C)] public static extern void kiv_sensor_free(IntPtr sensor);
        [DllImport(Library, CallingConvention = C)]
        public static extern int kiv_sensor_set_frame(IntPtr sensor, int frame);
        [DllImport(Library, CallingConvention = C)]
        public static extern int kiv_sensor_update_many(IntPtr sensor, [In] Reading[] readings, UIntPtr count,
            [Out] Result[] results, [Out] double[] matrices, [Out] byte[] states);

        public static string Text(IntPtr utf8)
        {
            int length = 0;
            while (Marshal.ReadByte(utf8, length) != 0)
                ++length;
            var bytes = new byte[length];
            Marshal.Copy(utf8, bytes, 0, length);
            return Encoding.UTF8.GetString(bytes);
        }

        public static void Check(int code)
        {
            if (code != 0)
                throw new KivException(code, Text(kiv_status_text(code)));
        }
    }

    // One sensor, configured from its parameter file.
    public sealed class Sensor : IDisposable
    {
        private IntPtr handle;

        public static string Version { get { return Native.Text(Native.kiv_version()); } }

        public Sensor(string parameterFile, bool localFrame = false)
        {
            IntPtr parameters;
            Native.Check(Native.kiv_parameters_new(out parameters));
            try
            {
                Load(parameters, parameterFile);
                Native.Check(Native.kiv_sensor_new(parameters, out handle));
            }
            finally
            {
                Native.kiv_parameters_free(parameters);
            }
            Native.Check(Native.kiv_sensor_set_frame(handle, localFrame ? 0 : 1));
        }

        private static void Load(IntPtr parameters, string path)
        {
            int code = Native.kiv_parameters_load(parameters, Encoding.UTF8.GetBytes(path + "\0"));
            long line, column;
            IntPtr expected, found;
            if (code == 553 && Native.kiv_parameters_fault(parameters, UIntPtr.Zero, out line, out column,
                                                           out expected, out found) == 0)
                throw new KivException(code, path + ":" + line + ":" + column + ": expected "
                                       + Native.Text(expected) + ", found " + Native.Text(found));
            Native.Check(code);
        }

        public Result[] Update(Reading[] readings, State[] states = null)
        {
            var results = new Result[readings.Length];
            var bytes = new byte[readings.Length];
            if (readings.Length > 0)
                Native.Check(Native.kiv_sensor_update_many(handle, readings, (UIntPtr)readings.Length, results,
                                                           null, bytes));
            for (int i = 0; states != null && i < bytes.Length; ++i)
                states[i] = (State)bytes[i];
            return results;
        }

        public void Dispose()
        {
            Native.kiv_sensor_free(handle);
            handle = IntPtr.Zero;
            GC.SuppressFinalize(this);
        }

        ~Sensor() { Dispose(); }
    }
}
