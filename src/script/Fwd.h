#pragma once

#include <set>
#include <vector>

#include "util/SharedPtr.h"
#include "util/String.h"
#include "util/WeakPtr.h"

// Names of the script language without their definitions. Headers include this; .cpp files include the rest.
namespace script {

class Object;
class AbstractFunction;
class List;
class Function;
class ClassObject;
class Variable;
class Reflected;
class Scope;
class Closure;
class Guest;
class Parser;

class Expression;
class Identifier;
class Assignment;
class CodeBlock;
class Block;
class ListDeclaration;
class FunctionDeclaration;
class FunctionCall;
class InfixDeclaration;
class InfixFunctionCall;
class Infix;

class CodeWriter;
class AbstractAttrib;
template <class T>
class TAttrib;
template <class T>
class Attrib;
template <class T>
class AttribGetSet;
template <class T>
class AttribRemotePoker;

using Int = int32_t;
using Float = double;

using ObjectPtr = util::SharedPtr<Object>;
using ObjectList = std::vector<ObjectPtr>;
using AbstractFunctionPtr = util::SharedPtr<AbstractFunction>;
using FunctionPtr = util::SharedPtr<Function>;
using ClassObjectPtr = util::SharedPtr<ClassObject>;
using ClassObjectWeakPtr = util::WeakPtr<ClassObject>;
using VariablePtr = util::SharedPtr<Variable>;
using VariableList = std::vector<VariablePtr>;
using ReflectedPtr = util::SharedPtr<Reflected>;
using ScopePtr = util::SharedPtr<Scope>;
using ClosurePtr = util::SharedPtr<Closure>;
using GuestPtr = util::SharedPtr<Guest>;

using ExpressionPtr = util::SharedPtr<Expression>;
using ExpressionList = std::vector<ExpressionPtr>;
using IdentifierPtr = util::SharedPtr<Identifier>;
using CodeBlockPtr = util::SharedPtr<CodeBlock>;
using BlockPtr = util::SharedPtr<Block>;
using InfixPtr = util::SharedPtr<Infix>;

using AbstractAttribPtr = util::SharedPtr<AbstractAttrib>;
template <class T>
using TAttribPtr = util::SharedPtr<TAttrib<T>>;
template <class T>
using AttribPtr = util::SharedPtr<Attrib<T>>;
template <class T>
using AttribGetSetPtr = util::SharedPtr<AttribGetSet<T>>;
template <class T>
using AttribRemotePokerPtr = util::SharedPtr<AttribRemotePoker<T>>;

using StringList = std::vector<String>;
using StringSet = std::set<String>;

}  // namespace script
