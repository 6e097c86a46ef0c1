// The probe plug-in, the program that it asks, and what it answers.
// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plugin/functions/probe_functions.h"
#include "plugin/host/plugin_host.h"
#include "plugin/host/program_access.h"
#include "run/loop/session_fixture.h"

#include <QCoreApplication>
#include <QLibrary>
#include <QWidget>

/// One call: the function, its arguments and what it gave.
struct Answer {
    QString name;
    std::vector<int> arguments;
    QString text;
};

class Probe {
public:
    [[nodiscard]] static QString path() {
        return QCoreApplication::applicationDirPath() + "/libprobe_plugin.so";
    }
    Probe() {
        library_.setLoadHints(QLibrary::ResolveAllSymbolsHint);
        EXPECT_TRUE(library_.load()) << library_.errorString().toStdString();
    }
    [[nodiscard]] std::vector<Answer> ask(const char* function) {
        const auto call = reinterpret_cast<const char* (*)()>(library_.resolve(function));
        std::vector<Answer> answers;
        for (const QString& line : QString(call()).split('\n', Qt::SkipEmptyParts)) {
            answers.push_back({line.section('(', 0, 0), {}, line.section(")=", 1)});
            for (const QString& argument :
                 line.section('(', 1).section(')', 0, 0).split(',', Qt::SkipEmptyParts))
                answers.back().arguments.push_back(argument.toInt());
        }
        return answers;
    }
    [[nodiscard]] const ProbeFunctions& functions() {
        const auto call =
            reinterpret_cast<const ProbeFunctions* (*)()>(library_.resolve("probeFunctions"));
        return *call();
    }

private:
    QLibrary library_{path()};
};

/// A session and a host that plug-ins find once the program has begun.
class ProbedSession : public SessionFixture {
protected:
    ~ProbedSession() override { setProgramAccess(nullptr); }
    void beginProgram() { setProgramAccess(&program_); }

    Probe probe;
    QWidget window;
    PluginHost host{{session, pump, display, path("Plugins_64/"), path("data/"), window}};

private:
    struct Program : ProgramAccess {
        Program(RunSession& running, PluginHost& plugins) : session_(running), host_(plugins) {}
        RunSession& session() override { return session_; }
        PluginHost& plugins() override { return host_; }
        RunSession& session_;
        PluginHost& host_;
    };
    Program program_{session, host};
};
