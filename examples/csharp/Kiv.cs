// The functions of kiv.h that a measuring host needs, for C#: kiv.dll on Windows, libkiv.so.1 on Linux.
// Others are declared in the same way.

using System;
using System.IO;
using System.Runtime.InteropServices;
using System.Text;
using Microsoft.Win32.SafeHandles;

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

    // A calibration's part in a reading's angles, degrees; NaN where there are none.
    [StructLayout(LayoutKind.Sequential)]
    public struct CalibrationUncertainty // 12 bytes
    {
        public float Rx, Ry, Rz;
    }

    public enum State : byte { Ok, Status, NoReference, Reference, NoOrientation, Refused }

    // A refusal that .NET has no exception for; the others are ArgumentException, FileNotFoundException,
    // UnauthorizedAccessException, IOException, ObjectDisposedException and OutOfMemoryException.
    public class KivException : Exception
    {
        public readonly int Code;
        public KivException(int code, string text) : base(text) { Code = code; }
    }

    // Freed once, and not while a call is in it.
    internal sealed class ParametersHandle : SafeHandleZeroOrMinusOneIsInvalid
    {
        public ParametersHandle() : base(true) { }
        protected override bool ReleaseHandle() { Native.kiv_parameters_free(handle); return true; }
    }

    internal sealed class SensorHandle : SafeHandleZeroOrMinusOneIsInvalid
    {
        public SensorHandle() : base(true) { }
        protected override bool ReleaseHandle() { Native.kiv_sensor_free(handle); return true; }
    }

    internal static class Native
    {
        private const string Library = "kiv";
        private const CallingConvention C = CallingConvention.Cdecl;

        [DllImport(Library, CallingConvention = C)] public static extern IntPtr kiv_version();
        [DllImport(Library, CallingConvention = C)] public static extern IntPtr kiv_last_error();
        [DllImport(Library, CallingConvention = C)] public static extern int kiv_last_system_error();
        [DllImport(Library, CallingConvention = C)]
        public static extern int kiv_parameters_new(out ParametersHandle parameters);
        [DllImport(Library, CallingConvention = C)] public static extern void kiv_parameters_free(IntPtr parameters);
        [DllImport(Library, CallingConvention = C)]
        public static extern int kiv_parameters_load(ParametersHandle parameters, byte[] path);
        [DllImport(Library, CallingConvention = C)]
        public static extern int kiv_sensor_new(ParametersHandle parameters, out SensorHandle sensor);
        [DllImport(Library, CallingConvention = C)] public static extern void kiv_sensor_free(IntPtr sensor);
        [DllImport(Library, CallingConvention = C)]
        public static extern int kiv_sensor_set_frame(SensorHandle sensor, int frame);
        [DllImport(Library, CallingConvention = C)]
        public static extern int kiv_sensor_set_calibration(SensorHandle sensor, [In] string[] names, UIntPtr count,
            [In] double[,] covariance);
        [DllImport(Library, CallingConvention = C)]
        public static extern int kiv_sensor_judge_calibrated(SensorHandle sensor, [In] Reading[] readings,
            UIntPtr count, [Out] Result[] results, [Out] double[] matrices, [Out] byte[] states, IntPtr trust,
            IntPtr uncertainties, [Out] CalibrationUncertainty[] calibration);

        public static string Text(IntPtr utf8)
        {
            int length = 0;
            while (Marshal.ReadByte(utf8, length) != 0)
                ++length;
            var bytes = new byte[length];
            Marshal.Copy(utf8, bytes, 0, length);
            return Encoding.UTF8.GetString(bytes);
        }

        // path: of the file that the call was about.
        public static void Check(int code, string path = null)
        {
            if (code != 0)
                throw Refusal(code, Text(kiv_last_error()), path);
        }

        private static Exception Refusal(int code, string detail, string path)
        {
            switch (code)
            {
                case 20: return new ArgumentException(detail);
                case 21: return new OutOfMemoryException(detail);
                case 550: return FileRefusal(detail, path);
                default: return new KivException(code, detail);
            }
        }

        private static Exception FileRefusal(string detail, string path)
        {
            bool windows = Environment.OSVersion.Platform == PlatformID.Win32NT;
            int error = kiv_last_system_error();
            if (error == 2 || (windows && error == 3))
                return new FileNotFoundException(detail, path);
            if (windows ? error == 5 : error == 1 || error == 13)
                return new UnauthorizedAccessException(detail);
            return new IOException(detail);
        }
    }

    // One sensor, configured from its parameter file.
    public sealed class Sensor : IDisposable
    {
        private readonly SensorHandle handle;

        public static string Version { get { return Native.Text(Native.kiv_version()); } }

        public Sensor(string parameterFile, bool localFrame = false)
        {
            if (parameterFile == null)
                throw new ArgumentNullException("parameterFile");
            if (parameterFile.IndexOf('\0') >= 0)
                throw new ArgumentException("parameterFile: expected a path, found one with a null character");
            ParametersHandle parameters;
            Native.Check(Native.kiv_parameters_new(out parameters));
            using (parameters)
            {
                byte[] path = Encoding.UTF8.GetBytes(parameterFile + "\0");
                Native.Check(Native.kiv_parameters_load(parameters, path), parameterFile);
                Native.Check(Native.kiv_sensor_new(parameters, out handle));
            }
            Native.Check(Native.kiv_sensor_set_frame(handle, localFrame ? 0 : 1));
        }

        // Names of parameters and the covariance of their errors, as kiv.h says.
        public void SetCalibration(string[] names, double[,] covariance)
        {
            if (names == null || covariance == null)
                throw new ArgumentNullException(names == null ? "names" : "covariance");
            if (covariance.GetLength(0) != names.Length || covariance.GetLength(1) != names.Length)
                throw new ArgumentException("covariance: expected a row and a column for each name");
            RequireOpen();
            Native.Check(Native.kiv_sensor_set_calibration(handle, names, (UIntPtr)names.Length, covariance));
        }

        public Result[] Update(Reading[] readings, State[] states = null,
                               CalibrationUncertainty[] calibration = null)
        {
            if (readings == null)
                throw new ArgumentNullException("readings");
            RequireRoom("states", states, readings.Length);
            RequireRoom("calibration", calibration, readings.Length);
            RequireOpen();
            var results = new Result[readings.Length];
            var bytes = new byte[readings.Length];
            Native.Check(Native.kiv_sensor_judge_calibrated(handle, readings, (UIntPtr)readings.Length, results,
                                                            null, bytes, IntPtr.Zero, IntPtr.Zero, calibration));
            for (int i = 0; states != null && i < bytes.Length; ++i)
                states[i] = (State)bytes[i];
            return results;
        }

        private static void RequireRoom(string name, Array array, int count)
        {
            if (array != null && array.Length < count)
                throw new ArgumentException(name + ": expected room for " + count + ", found " + array.Length);
        }

        private void RequireOpen()
        {
            if (handle.IsClosed)
                throw new ObjectDisposedException(typeof(Sensor).FullName);
        }

        public void Dispose() { handle.Dispose(); }
    }
}
