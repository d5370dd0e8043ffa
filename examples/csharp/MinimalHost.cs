using System;
using System.Globalization;

public static class MinimalHost
{
    public static int Main(string[] arguments)
    {
        // Vector, azimuth, elevation, tilts X and Y, temperature; the first one becomes the reference.
        var reading = new Kiv.Reading {
            Status = 2, X = 4000, Y = 1500, Z = 450, Azimuth = 12.5F, Elevation = 3,
            LevelX = 1, LevelY = -2, Temperature = 20, RefMetric = 0.1F };
        var second = reading;
        second.Azimuth = 27.5F;
        try
        {
            using (var sensor = new Kiv.Sensor(arguments.Length > 0 ? arguments[0] : "Tg5.prm"))
                foreach (var r in sensor.Update(new[] { reading, second }))
                    Console.Write(string.Format(CultureInfo.InvariantCulture,
                        "rx {0:F4}  ry {1:F4}  rz {2:F4} degrees\n", (double)r.Rx, (double)r.Ry, (double)r.Rz));
            return 0;
        }
        catch (Exception error)
        {
            Console.Error.WriteLine(error.Message);
            return 1;
        }
    }
}
